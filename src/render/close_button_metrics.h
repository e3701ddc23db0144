#pragma once

// The close button's place in the upper right corner of a view, in logical pixels: the hit area and every consumer that
// draws the icon agree on it.
namespace ZEMO::UI {

inline constexpr int kCloseButtonMargin = 20;  // from the top and from the right
inline constexpr int kCloseButtonSizeWide = 36;
inline constexpr int kCloseButtonSizeNarrow = 36;
/// A view of this width or less takes the narrow size.
inline constexpr int kCloseButtonWidthThreshold = 897;

}  // namespace ZEMO::UI
