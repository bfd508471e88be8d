#pragma once

// The models of the scene, each in scene units and at the place where the game shows it while its frame is
// unturned (the frame's own place taken off).

#include "mesh.h"

Mesh MakePiece();   ///< the folded paper triangle, point toward -z, y = 0 through its corners
Mesh MakeTable();   ///< the table, top at y = 0; ten times as large it is the sky, seen from below
Mesh MakeBonus();   ///< the target's disc on the table, about its own middle
Mesh MakeExtra();   ///< the raised ring and star on the disc
Mesh MakeArrow();   ///< the aim: finger, arrow and dots on the table, the piece's middle at the origin
Mesh MakeGoal();    ///< the posts, bar at the origin
Mesh MakeStadium(); ///< the stands round the table and the floor under it, in the scene's own coordinates
Mesh MakeLines();   ///< the markings of the field, in the scene's own coordinates
