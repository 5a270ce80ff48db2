# How every target of this project is compiled, and how its libraries are exported and installed.

include(GNUInstallDirs)
include(GenerateExportHeader)

set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTORCC ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")

set(UNIPROG_INSTALL_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}/UniProgUtils")
set(UNIPROG_INSTALL_CMAKEDIR "${CMAKE_INSTALL_LIBDIR}/cmake/UniProgUtils")
set(UNIPROG_INSTALL_THEMESDIR "${CMAKE_INSTALL_DATADIR}/UniProgUtils/themes")

# Compile options of our own code; nothing here reaches an application that links us.
function(uniprog_compile_options target)
    target_compile_features(${target} PUBLIC cxx_std_17)
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        POSITION_INDEPENDENT_CODE ON
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    target_compile_definitions(${target} PRIVATE
        QT_NO_KEYWORDS
        QT_NO_CAST_TO_ASCII
        QT_NO_URL_CAST_FROM_STRING
        QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
        QT_STRICT_ITERATORS
        QT_DISABLE_DEPRECATED_BEFORE=0x060A00)
    if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
        target_compile_options(${target} PRIVATE
            -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wsuggest-override -Wcast-qual)
        if(UNIPROG_WARNINGS_AS_ERRORS)
            target_compile_options(${target} PRIVATE -Werror)
        endif()
        if(UNIPROG_SANITIZE)
            target_compile_options(${target} PRIVATE
                -fsanitize=${UNIPROG_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
            target_link_options(${target} PRIVATE -fsanitize=${UNIPROG_SANITIZE})
        endif()
    elseif(MSVC)
        target_compile_options(${target} PRIVATE /W4 /permissive- /utf-8 /Zc:__cplusplus)
        if(UNIPROG_WARNINGS_AS_ERRORS)
            target_compile_options(${target} PRIVATE /WX)
        endif()
    endif()
endfunction()

# What the system, and UtilsMisc::GetFileVersion(), reads of a library's version.
function(uniprog_version_resource target)
    set(target_file "${CMAKE_SHARED_LIBRARY_PREFIX}${target}${CMAKE_SHARED_LIBRARY_SUFFIX}")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/version.rc.in" "${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc" @ONLY)
    target_sources(${target} PRIVATE "${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc")
endfunction()

# uniprog_library(<target> EXPORT_NAME <name>)
# An installed library of the namespace UniProg:: with a generated export header <target>_export.h in lower case.
function(uniprog_library target)
    cmake_parse_arguments(arg "" "EXPORT_NAME" "" ${ARGN})
    uniprog_compile_options(${target})
    if(UNIPROG_COVERAGE)
        # Workers count as well, and a line stays a line only without optimisation.
        target_compile_options(${target} PRIVATE --coverage -fprofile-update=atomic -O0)
        target_link_options(${target} PRIVATE --coverage)
    endif()
    set_target_properties(${target} PROPERTIES
        EXPORT_NAME ${arg_EXPORT_NAME}
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR})
    if(WIN32 AND BUILD_SHARED_LIBS)
        uniprog_version_resource(${target})
    elseif(UNIX AND NOT APPLE)
        # Our libraries find one another in whatever folder they are installed to.
        set_target_properties(${target} PROPERTIES INSTALL_RPATH "\$ORIGIN")
    endif()
    generate_export_header(${target})
    string(TOLOWER ${target} name)
    target_include_directories(${target} PUBLIC
        "$<BUILD_INTERFACE:${CMAKE_CURRENT_BINARY_DIR}>"
        "$<INSTALL_INTERFACE:${UNIPROG_INSTALL_INCLUDEDIR}>")
    if(NOT BUILD_SHARED_LIBS)
        string(TOUPPER ${target} upper)
        target_compile_definitions(${target} PUBLIC ${upper}_STATIC_DEFINE)
    endif()
    install(FILES "${CMAKE_CURRENT_BINARY_DIR}/${name}_export.h"
        DESTINATION "${UNIPROG_INSTALL_INCLUDEDIR}" COMPONENT dev)
    install(TARGETS ${target} EXPORT ${target}Targets
        RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime NAMELINK_COMPONENT dev
        ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT dev)
    install(EXPORT ${target}Targets NAMESPACE UniProg::
        DESTINATION "${UNIPROG_INSTALL_CMAKEDIR}" COMPONENT dev)
endfunction()

# uniprog_public_headers(<target> <header>...)
# Headers of this folder that applications include by their plain name.
function(uniprog_public_headers target)
    target_include_directories(${target} PUBLIC "$<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}>")
    target_sources(${target} PRIVATE ${ARGN})
    list(TRANSFORM ARGN PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/")
    install(FILES ${ARGN} DESTINATION "${UNIPROG_INSTALL_INCLUDEDIR}" COMPONENT dev)
    set_property(GLOBAL APPEND PROPERTY UNIPROG_PUBLIC_HEADERS ${ARGN})
endfunction()
