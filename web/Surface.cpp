// SPDX-License-Identifier: MIT
// A small library apart from the web engine's, which takes its time to load.
#include <QOpenGLWidget>

/// Has a window that was not shown yet drawn by the graphics card, as the web engine wants it. Qt would make a window
/// that is on the screen already anew, before the user's eyes.
extern "C" Q_DECL_EXPORT void prepareWindow(QWidget* window) { (new QOpenGLWidget(window))->hide(); }
