#pragma once

#include <memory>

/// Every object of the scene graph is counted by reference.
template <class T> using Ref = std::shared_ptr<T>;
