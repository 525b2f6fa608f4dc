// SPDX-License-Identifier: MIT

// The common look of the kit's own widgets: colours, bevels, arrows.

#pragma once

#include <interface/InterfaceDefs.h>
#include <interface/Rect.h>

class BView;

namespace BPrivate {

constexpr rgb_color kPanelColor = {216, 216, 216, 255};
constexpr rgb_color kLightEdge = {255, 255, 255, 255};
constexpr rgb_color kSoftLightEdge = {232, 232, 232, 255};
constexpr rgb_color kSoftDarkEdge = {184, 184, 184, 255};
constexpr rgb_color kDarkEdge = {152, 152, 152, 255};
constexpr rgb_color kDarkestEdge = {108, 108, 108, 255};
constexpr rgb_color kTroughColor = {192, 192, 192, 255};
constexpr rgb_color kChosenColor = {184, 184, 184, 255};
constexpr rgb_color kTextColor = {0, 0, 0, 255};
constexpr rgb_color kDisabledTextColor = {128, 128, 128, 255};

// One pixel wide: left and top edge in one colour, right and bottom in the other.
void DrawEdges(BView* view, BRect rect, rgb_color leftTop, rgb_color rightBottom);

// Two pixels of edge, then the face.
void DrawRaised(BView* view, BRect rect, rgb_color face);
void DrawPressed(BView* view, BRect rect, rgb_color face);
void DrawSunken(BView* view, BRect rect);

enum class ArrowDirection { kUp, kDown, kLeft, kRight };

// A small triangle in the middle of the rectangle.
void DrawArrow(BView* view, BRect rect, ArrowDirection direction, rgb_color color);

} // namespace BPrivate
