// SPDX-License-Identifier: MIT
// The colours of the drawings: red, green, blue and alpha, each 0 .. 1.
#pragma once

namespace TULO3D {

// Deliberate: the texts go into the files as they stand, with their leading dots and the two tabs.
// Automatic colours are taken from the first 14 rows.
// clang-format off
#define TULO3D_COLORS(ROW) \
	ROW(LIGHTBLUE,       "0 0.749 1 0.5")          \
	ROW(DARKBLUE,        "0 0.1 .803 0.5")         \
	ROW(YELLOW,          "1 1 0 0.5")              \
	ROW(PINK,            "1 0.411 0.705 0.5")      \
	ROW(BLACK,           "0.1 0.1 0.1 0.5")        \
	ROW(LIGHTBROWN,      "0.823 0.705 0.549 0.5")  \
	ROW(DARKBROWN,       "0.545 0.271 0.074 0.5")  \
	ROW(ORANGE,          "1 0.627 0 0.5")          \
	ROW(PURPLE,          "0.627 0.125 0.941 0.5")  \
	ROW(GRAY,            ".745 .745 .745 0.5")     \
	ROW(LIGHTGRAY,       ".445 .445 .445 0.5")     \
	ROW(RED,             "1 0 0 0.5")              \
	ROW(GREEN,           "0 1 0 0.5")              \
	ROW(WHITE,           "1 1 1 0.5")              \
	ROW(CRIMSON,         ".86 .08 .24 0.5")        \
	ROW(CDARKORANGE,     "1 .55 0 0.5")            \
	ROW(CGOLDENROD,      ".85 .65 .13 0.5")        \
	ROW(COLIVE,          ".5 .5 .0 0.5")           \
	ROW(CLAWNGREEN,      "0.49\t0.99 0.00 0.5")    \
	ROW(CGREENYELLOW,    "0.68 1.00 0.18 0.5")     \
	ROW(CPALEGREEN,      "0.60\t0.98 0.60 0.5")    \
	ROW(CMEDSPRINGGREEN, "0.00 0.98 0.60 0.5")     \
	ROW(CLIGHTSEAGREAN,  "0.13 0.70 0.67 0.5")     \
	ROW(CCYAN,           "0.00 1.00 1.00 0.5")     \
	ROW(CSTEELBLUE,      "0.27 0.51 0.71 0.5")     \
	ROW(MIDNIGHTBLUE,    "0.10 0.10 0.44 0.5")     \
	ROW(CWHEAT,          "0.96 0.87 0.7 0.5")

#define TULO3D_COLOR_CONSTANT(name, text) constexpr const char* name = text;
#define TULO3D_COLOR_TEXT(name, text) text,
#define TULO3D_COLOR_NAME(name, text) #name,
// clang-format on

TULO3D_COLORS(TULO3D_COLOR_CONSTANT)

constexpr const char* colorArray[] = {TULO3D_COLORS(TULO3D_COLOR_TEXT)};
constexpr const char* colorNames[] = {TULO3D_COLORS(TULO3D_COLOR_NAME)};

#undef TULO3D_COLOR_CONSTANT
#undef TULO3D_COLOR_TEXT
#undef TULO3D_COLOR_NAME
#undef TULO3D_COLORS

/// The number of rows that take part in automatic colouring.
constexpr int kCycledColors = 14;

/// The line widths, in pixels, of a corner and of a vertex that the drawing is about.
constexpr int kCornerWidth = 5;
constexpr int kMarkWidth = 10;

/// Not a colour: asks the polygon writer for an outline.
constexpr const char* BOUNDARY = "BOUNDARY";

} // namespace TULO3D
