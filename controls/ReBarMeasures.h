// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

/// The parts of a rebar, in pixels.
namespace ReBarMeasures {

inline constexpr int gripperWidth = 10;
inline constexpr int chevronWidth = 16;
inline constexpr int captionGap = 4;
inline constexpr int rowGap = 2;
inline constexpr int columnGap = 2;
inline constexpr int smallestChild = 32; ///< of a child that can show less than all of itself
inline constexpr int dragSlack = 8;      ///< beyond the edge of the rebar before a band gets a row of its own

} // namespace ReBarMeasures
