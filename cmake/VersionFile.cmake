# The library's own version file, made anew whenever something of the library was, and put into it as the resource
# ":/Tessellum.vft". The target TessellumVersion has the object.
set(folder ${CMAKE_CURRENT_BINARY_DIR}/version)
file(CONFIGURE OUTPUT ${folder}/Tessellum.qrc CONTENT [[
<RCC><qresource prefix="/"><file>Tessellum.vft</file></qresource></RCC>
]])
add_custom_command(OUTPUT ${folder}/Tessellum.vft
    COMMAND ${CMAKE_COMMAND} -D OUTPUT=${folder}/Tessellum.vft -D VERSION=${PROJECT_VERSION}
        -D FILE=$<TARGET_FILE_NAME:Tessellum> -D SOURCE=${PROJECT_SOURCE_DIR}
        -P ${PROJECT_SOURCE_DIR}/cmake/WriteVersionFile.cmake
    DEPENDS ${PROJECT_SOURCE_DIR}/cmake/WriteVersionFile.cmake $<TARGET_OBJECTS:TessellumObjects> VERBATIM)
add_custom_command(OUTPUT ${folder}/qrc_Tessellum.cpp
    COMMAND Qt5::rcc --name TessellumVersion --output ${folder}/qrc_Tessellum.cpp ${folder}/Tessellum.qrc
    DEPENDS ${folder}/Tessellum.vft ${folder}/Tessellum.qrc VERBATIM)
add_library(TessellumVersion OBJECT ${folder}/qrc_Tessellum.cpp)
set_target_properties(TessellumVersion PROPERTIES AUTOMOC OFF AUTORCC OFF)
target_link_libraries(TessellumVersion PRIVATE Qt5::Core)
