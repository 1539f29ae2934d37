// SPDX-License-Identifier: MIT
#include "windows/WebPluginLoader.h"

#include "windows/Text.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLibrary>
#include <QLibraryInfo>
#include <QOpenGLContext>
#include <QPluginLoader>

#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

// A private function of Qt, meant for engines that are linked to the program and set up before the application starts.
Q_GUI_EXPORT void qt_gl_set_global_share_context(QOpenGLContext* context);

namespace {

// Tries everything that the engine needs together. A system may allow user namespaces but not the others, or allow them
// all but forbid what they are used for.
bool mayMakeNamespaces()
{
    pid_t const child = ::fork();
    if (child == 0) {
        bool const may = ::unshare(CLONE_NEWUSER | CLONE_NEWPID | CLONE_NEWNET) == 0 && ::chroot("/") == 0;
        ::_exit(may ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    int status = EXIT_FAILURE;
    return child > 0 && ::waitpid(child, &status, 0) == child && status == EXIT_SUCCESS;
}

// If it cannot isolate its pages, the engine ends the whole program.
bool mayIsolatePages()
{
    if (qEnvironmentVariableIsSet("QTWEBENGINE_DISABLE_SANDBOX"))
        return true;
    return ::geteuid() != 0 && mayMakeNamespaces();
}

// Finds one of the engine's parts where the engine looks for it: where a variable points, or in the toolkit's folder.
QString placeOfPart(char const* variable, QLibraryInfo::LibraryPath folder, char const* name)
{
    auto const elsewhere = qEnvironmentVariable(variable);
    return elsewhere.isEmpty() ? QDir(QLibraryInfo::path(folder)).filePath(QLatin1String(name)) : elsewhere;
}

// The engine's process and its resources are in separate packages. Without them the engine ends the program.
bool isEngineComplete()
{
    auto const process
        = placeOfPart("QTWEBENGINEPROCESS_PATH", QLibraryInfo::LibraryExecutablesPath, "QtWebEngineProcess");
    QDir const resources(placeOfPart("QTWEBENGINE_RESOURCES_PATH", QLibraryInfo::DataPath, "resources"));
    QFileInfo const pack(resources, QStringLiteral("qtwebengine_resources.pak"));
    return QFileInfo(process).isExecutable() && pack.size() > 0;
}

// The engine crashes without a shared context. Returns whether the context can draw.
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
    QPluginLoader loader(toQt((folder_ / "usage-meter-web").string()));
    auto const id = loader.metaData().value(QStringLiteral("IID")).toString();
    if (!id.isEmpty() && id != QLatin1String(USAGE_METER_WEB_PLUGIN_ID))
        return platform::LoadError::EngineOfAnotherBuild;
    if (!isEngineComplete())
        return platform::LoadError::EngineMissing;
    // The engine would write its TLS secrets to that file.
    qunsetenv("SSLKEYLOGFILE");
    shareGraphics();
    plugin_ = qobject_cast<WebPlugin*>(loader.instance());
    if (plugin_)
        return std::nullopt;
    qWarning("%s", qPrintable(loader.errorString()));
    return platform::LoadError::EngineMissing;
}
