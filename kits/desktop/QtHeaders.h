// SPDX-License-Identifier: MIT

// Precompiled for the files of this folder, the only ones that see Qt.

#pragma once

#include <QBackingStore>
#include <QGlyphRun>
#include <QGuiApplication>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QRegion>
#include <QTextLayout>
#include <QWindow>
