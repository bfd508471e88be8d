#pragma once

#include <filesystem>

/// Makes sure that all models and textures of the scene can be read, for less than reading them costs.
/// @throws FileError  that names the first which can't, and says why
void CheckSceneFiles(const std::filesystem::path &directory);
