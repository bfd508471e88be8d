#pragma once

// The models of the scene, in scene units, relative to their unrotated frames.

#include "mesh.h"

Mesh MakePiece();   ///< the folded paper triangle, point toward -z, y = 0 through its corners
Mesh MakeTable();   ///< the table, top at y = 0; enlarged ten times it is the sky, seen from below
Mesh MakeBonus();   ///< the disc of the bonus area, around its centre
Mesh MakeExtra();   ///< the raised ring and star on the disc
Mesh MakeArrow();   ///< the aim: finger, arrow and dots on the table; the piece's centre at the origin
Mesh MakeGoal();    ///< the posts, bar at the origin
Mesh MakeStadium(); ///< the stands around the table and the floor, in scene coordinates
Mesh MakeLines();   ///< the markings of the field, in scene coordinates
