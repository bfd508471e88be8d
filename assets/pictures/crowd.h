#pragma once

// A crowd in the stands: rows of small figures in mixed colours.

#include "markup.h"

#include <string>

/// The SVG of a `<crowd x y width rows person seed/>` element: `rows` rows from y down, each figure about
/// `person` pixels wide. The same seed gives the same crowd.
std::string SetCrowd(const Element &element);
