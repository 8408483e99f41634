# Writes OUTPUT, the version file of the library VERSION named FILE, with the time of now and the commit of SOURCE.
cmake_minimum_required(VERSION 3.25)

string(TIMESTAMP time "%Y/%m/%d %H:%M:%S" UTC)
execute_process(COMMAND git -C ${SOURCE} rev-parse HEAD RESULT_VARIABLE result OUTPUT_VARIABLE commit
    OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
if(NOT result EQUAL 0)
    set(commit "")
endif()

file(CONFIGURE OUTPUT ${OUTPUT} NEWLINE_STYLE CRLF CONTENT [[
[Version]
Comments=${time}
CompanyName=Tessellum
FileDescription=Tessellum library
FileVersion=${VERSION}
LegalCopyright=Copyright 2026 the authors of Tessellum, Apache License 2.0
OriginalFilename=${FILE}
ProductName=Tessellum library
ProductVersion=${VERSION}
InternalName=Tessellum
LegalTrademarks=
VersionHash=${commit}
]])
