#pragma once

#include <filesystem>

/// Checks that all models and textures of the scene are readable, without fully reading them.
/// @throws FileError  if one isn't; names the first and says why
void CheckSceneFiles(const std::filesystem::path &directory);
