# What an application needs: the library, its headers as they are included here (<core/Library.h>),
# and a package for find_package(Tessellum CONFIG).
include(CMakePackageConfigHelpers)

set(packageDir ${CMAKE_INSTALL_LIBDIR}/cmake/Tessellum)

install(TARGETS Tessellum EXPORT TessellumTargets)
install(EXPORT TessellumTargets NAMESPACE Tessellum:: DESTINATION ${packageDir})

# The sockets of remote peers stay the library's own: who uses it need not have Qt's web sockets.
install(DIRECTORY src/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tessellum
    FILES_MATCHING PATTERN "*.h"
    PATTERN Precompiled.h EXCLUDE
    PATTERN platform EXCLUDE
    REGEX "/(utils/Remote|storages/remote/RemoteStorage)[A-Za-z]+\\.h$" EXCLUDE)
install(FILES ${PROJECT_BINARY_DIR}/src/shared/TessellumExport.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tessellum/shared)

configure_package_config_file(cmake/TessellumConfig.cmake.in ${PROJECT_BINARY_DIR}/TessellumConfig.cmake
    INSTALL_DESTINATION ${packageDir})
# Before 1.0 a new minor version may break its users.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TessellumConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TessellumConfig.cmake ${PROJECT_BINARY_DIR}/TessellumConfigVersion.cmake
    DESTINATION ${packageDir})
