# Builds 64-bit Windows programs on Debian, with g++-mingw-w64-x86-64-posix and a Qt for Windows in UNIPROG_WINDOWS_QT (a
# CMake or environment variable; scripts/test-windows.sh sets it). The host's Qt gives moc, rcc and uic.

include("${CMAKE_CURRENT_LIST_DIR}/mingw-w64-compilers.cmake")

if(NOT UNIPROG_WINDOWS_QT)
    set(UNIPROG_WINDOWS_QT "$ENV{UNIPROG_WINDOWS_QT}")
endif()
if(NOT EXISTS "${UNIPROG_WINDOWS_QT}/lib/cmake/Qt6")
    message(FATAL_ERROR "UNIPROG_WINDOWS_QT is to name the folder of a Qt 6 for Windows; \"${UNIPROG_WINDOWS_QT}\" is none")
endif()
set(UNIPROG_WINDOWS_QT "${UNIPROG_WINDOWS_QT}" CACHE PATH "Folder of a Qt 6 built with mingw-w64")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES UNIPROG_WINDOWS_QT)

set(CMAKE_PREFIX_PATH "${UNIPROG_WINDOWS_QT}")
list(APPEND CMAKE_FIND_ROOT_PATH "${UNIPROG_WINDOWS_QT}")
set(QT_HOST_PATH /usr CACHE PATH "Prefix of the Qt that runs on the host")
set(QT_HOST_PATH_CMAKE_DIR "/usr/lib/${CMAKE_HOST_SYSTEM_PROCESSOR}-linux-gnu/cmake" CACHE PATH
    "CMake packages of the Qt that runs on the host")

# ctest starts every program through Wine.
set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../../scripts/run-under-wine.sh" "${UNIPROG_WINDOWS_QT}")
