# The library shows its plain functions and what is exported of its two namespaces, and nothing else.
cmake_minimum_required(VERSION 3.25)

set(functions initializeLibrary uninitializeLibrary getCoreInterface getLocalizationInterface getLibraryHash
    getVersionInformation addPluginSearchPath)
set(expected ${functions})

get_filename_component(library ${LIBRARY} REALPATH)
if(NOT library MATCHES "/libTessellum[.]so[.]" OR NOT SONAME MATCHES "^libTessellum[.]so[.][0-9]+$")
    message(FATAL_ERROR "${library} has the soname ${SONAME}")
endif()

execute_process(COMMAND ${NM} -D -C --defined-only ${library} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE "\n$" "" symbols "${symbols}")
string(REPLACE ";" "," symbols "${symbols}")
string(REPLACE "[" "(" symbols "${symbols}")
string(REPLACE "]" ")" symbols "${symbols}")
string(REPLACE "\n" ";" symbols "${symbols}")
foreach(symbol IN LISTS symbols)
    string(REGEX REPLACE "^[0-9a-f]+ [A-Za-z] " "" name "${symbol}")
    if(name IN_LIST functions)
        list(REMOVE_ITEM expected ${name})
    elseif(symbol MATCHES " [VWu] Q")
        # Without optimisation the inline functions of Qt stand in the library too.
    elseif(name MATCHES "\\(anonymous namespace\\)" OR NOT name MATCHES "(Shared|Tessellum|std)::|^typeinfo ")
        message(SEND_ERROR "exported, but internal: ${symbol}")
    endif()
endforeach()
foreach(name IN LISTS expected)
    message(SEND_ERROR "${name} is not exported under its plain name")
endforeach()
