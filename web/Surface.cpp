// SPDX-License-Identifier: MIT
// This is a small separate library, because the web engine's is slow to load.
#include <QOpenGLWidget>

/// Makes a window that has not been shown yet use OpenGL, as the web engine requires. Otherwise Qt would recreate the
/// visible window, which flickers.
extern "C" Q_DECL_EXPORT void prepareWindow(QWidget* window) { (new QOpenGLWidget(window))->hide(); }
