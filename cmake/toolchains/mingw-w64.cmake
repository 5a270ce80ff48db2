# Builds 64-bit Windows programs on Debian, with g++-mingw-w64-x86-64-posix and a Qt for Windows in UNIPROG_WINDOWS_QT (a
# CMake or environment variable; scripts/test-windows.sh sets it). The host's Qt gives moc, rcc and uic.

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

if(NOT UNIPROG_WINDOWS_QT)
    set(UNIPROG_WINDOWS_QT "$ENV{UNIPROG_WINDOWS_QT}")
endif()
if(NOT EXISTS "${UNIPROG_WINDOWS_QT}/lib/cmake/Qt6")
    message(FATAL_ERROR "UNIPROG_WINDOWS_QT is to name the folder of a Qt 6 for Windows; \"${UNIPROG_WINDOWS_QT}\" is none")
endif()
set(UNIPROG_WINDOWS_QT "${UNIPROG_WINDOWS_QT}" CACHE PATH "Folder of a Qt 6 built with mingw-w64")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES UNIPROG_WINDOWS_QT)

set(CMAKE_PREFIX_PATH "${UNIPROG_WINDOWS_QT}")
set(QT_HOST_PATH /usr CACHE PATH "Prefix of the Qt that runs on the host")
set(QT_HOST_PATH_CMAKE_DIR "/usr/lib/${CMAKE_HOST_SYSTEM_PROCESSOR}-linux-gnu/cmake" CACHE PATH
    "CMake packages of the Qt that runs on the host")

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 "${UNIPROG_WINDOWS_QT}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# ctest starts every program through Wine.
set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../../scripts/run-under-wine.sh" "${UNIPROG_WINDOWS_QT}")
