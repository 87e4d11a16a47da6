// SPDX-License-Identifier: MIT
// Writing a mesh: one function for each format, chosen by the extension of the output's name.
#pragma once

#include "Mesh.h"

#include <filesystem>
#include <vector>

namespace app {

/// The files that an output stands for: itself, or the three of TetGen for any one of them. Throws
/// when the extension says no format.
std::vector<std::filesystem::path> getOutputFiles(const std::filesystem::path& output);

/// Writes `output` whole, or leaves what was there and throws.
void writeMesh(const Mesh& mesh, const std::filesystem::path& output);

// Each writes files that appear only once they are complete.
void writeVtu(const Mesh& mesh, const std::filesystem::path& output);
void writeTetgen(const Mesh& mesh, const std::filesystem::path& output);
void writeHullOff(const Mesh& mesh, const std::filesystem::path& output);
/// Drawn by the library, every tetrahedron in a colour of its own.
void writeOogl(const Mesh& mesh, const std::filesystem::path& output);

} // namespace app
