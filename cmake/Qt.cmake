# Which Qt: 5.15 where all that is needed of it is installed, else 6. Its targets are named without a
# number, Qt::Core, and so are its functions, qt_add_translation.
set(VQTL4_QT "" CACHE STRING "Qt's major version, 5 or 6; empty: 5 where it is installed, else 6")
set(qt_components Core Gui Sql Widgets LinguistTools)
if(BUILD_TESTING)
    list(APPEND qt_components Test)
endif()
set(qt5_minimum 5.15)
set(qt6_minimum 6.4)

if(VQTL4_QT STREQUAL "")
    add_subdirectory("${CMAKE_CURRENT_LIST_DIR}/qt5" qt5)
elseif(VQTL4_QT MATCHES "^[56]$")
    set(VQTL4_QT_MAJOR "${VQTL4_QT}")
else()
    message(FATAL_ERROR "VQTL4_QT is 5 or 6, not ${VQTL4_QT}")
endif()

# What was found beside the other Qt, in a build folder that had it before. An empty one stays so.
if(VQTL4_QT_IN_USE AND NOT VQTL4_QT_IN_USE EQUAL VQTL4_QT_MAJOR)
    if(VQTL4_QT_JAPANESE)
        unset(VQTL4_QT_JAPANESE CACHE)
    endif()
    unset(MACDEPLOYQT CACHE)
endif()
set(VQTL4_QT_IN_USE "${VQTL4_QT_MAJOR}" CACHE INTERNAL "Qt's major version of the last configuration")

find_package(Qt${VQTL4_QT_MAJOR} ${qt${VQTL4_QT_MAJOR}_minimum} REQUIRED COMPONENTS ${qt_components})
