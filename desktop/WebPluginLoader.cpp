// SPDX-License-Identifier: MIT
#include "desktop/WebPluginLoader.h"

#include "desktop/Text.h"

#include <QCoreApplication>
#include <QLibrary>
#include <QOpenGLContext>
#include <QPluginLoader>

#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

// Qt's own, for engines that are linked to the program and set it up before the application starts.
Q_GUI_EXPORT void qt_gl_set_global_share_context(QOpenGLContext* context);

namespace {

bool mayMakeNamespaces()
{
    pid_t const child = ::fork();
    if (child == 0)
        ::_exit(::unshare(CLONE_NEWUSER) == 0 ? EXIT_SUCCESS : EXIT_FAILURE);
    int status = EXIT_FAILURE;
    return child > 0 && ::waitpid(child, &status, 0) == child && status == EXIT_SUCCESS;
}

// Where the engine cannot isolate its pages it ends the whole program.
bool mayIsolatePages()
{
    if (qEnvironmentVariableIsSet("QTWEBENGINE_DISABLE_SANDBOX"))
        return true;
    return ::geteuid() != 0 && mayMakeNamespaces();
}

// The engine crashes without a context to share. Tells whether that is one that can draw.
bool shareGraphics()
{
    if (auto const* const shared = QOpenGLContext::globalShareContext())
        return shared->isValid();
    auto* const context = new QOpenGLContext(QCoreApplication::instance());
    qt_gl_set_global_share_context(context);
    return context->create();
}

}

void WebPluginLoader::prepareWindow(QWidget& window) const
{
    using Prepare = void (*)(QWidget*);
    if (!shareGraphics())
        return;
    auto const prepare = reinterpret_cast<Prepare>(
        QLibrary::resolve(toQt((folder_ / "usage-meter-surface").string()), "prepareWindow"));
    if (prepare)
        prepare(&window);
}

std::optional<platform::LoadError> WebPluginLoader::load()
{
    if (plugin_)
        return std::nullopt;
    if (!mayIsolatePages())
        return platform::LoadError::EngineNotIsolated;
    shareGraphics();
    QPluginLoader loader(toQt((folder_ / "usage-meter-web").string()));
    plugin_ = qobject_cast<WebPlugin*>(loader.instance());
    if (plugin_)
        return std::nullopt;
    qWarning("%s", qPrintable(loader.errorString()));
    return platform::LoadError::EngineMissing;
}
