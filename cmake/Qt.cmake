# Which Qt: 5.15 where it is installed, else 6. Its targets are named without a number, Qt::Core, and
# so are its functions, qt_add_translation.
set(VQTL4_QT "" CACHE STRING "Qt's major version, 5 or 6; empty: 5 where it is installed, else 6")
if(VQTL4_QT STREQUAL "")
    find_package(Qt5 5.15 QUIET COMPONENTS Core)
    if(Qt5_FOUND)
        set(VQTL4_QT_MAJOR 5)
    else()
        set(VQTL4_QT_MAJOR 6)
    endif()
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

# vqtl4_find_qt(<component>...): these components of that Qt.
macro(vqtl4_find_qt)
    find_package(Qt${VQTL4_QT_MAJOR} 5.15 REQUIRED COMPONENTS ${ARGN})
endmacro()
