#pragma once

#include <stdexcept>

/// An operation of the scene graph that failed; says what was tried, on what, and why.
class SceneError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};
