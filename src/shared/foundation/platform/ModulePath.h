#pragma once

#include <QString>

namespace Shared::Foundation::Platform {

/*! The file of the running program; empty, with \a error the system's number, where it cannot be found. */
QString ExecutableFilePath(int &error);

/*! The absolute path of the library or program that \a address lies in; fails as ExecutableFilePath(). */
QString ModuleFilePath(const void *address, int &error);

} // namespace Shared::Foundation::Platform
