#pragma once

#include <memory>

/// A reference-counted pointer, used for every object of the scene graph.
template <class T> using Ref = std::shared_ptr<T>;
