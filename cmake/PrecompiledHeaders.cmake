# Precompiled headers, for unity builds only: in the debug tree each source compiles by itself, with nothing but what it includes. They
# bring no include folder along, so a folder still finds only the headers of neighbours that it names.
#
# A set of headers fits the targets of one optimisation level and of the Qt settings of calverin_use_qt. CALVERIN_PRECOMPILED names
# the set that the targets of a directory share.

# The set is a library of its own that nobody links.
function(calverin_precompiled name)
    cmake_parse_arguments(SET "" "" "HEADERS;USES" ${ARGN})
    if(NOT CMAKE_UNITY_BUILD)
        return()
    endif()
    set(source ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
    file(CONFIGURE OUTPUT ${source} CONTENT "// Only the headers before it matter.\n")
    add_library(${name} STATIC ${source})
    # Defined may be only what all targets of the set define.
    target_link_libraries(${name} PRIVATE Qt5::Core)
    target_compile_definitions(${name} PRIVATE ${CALVERIN_QT_DEFINITIONS})
    foreach(used IN LISTS SET_USES)
        target_include_directories(${name} SYSTEM PRIVATE $<TARGET_PROPERTY:${used},INTERFACE_INCLUDE_DIRECTORIES>)
    endforeach()
    target_precompile_headers(${name} PRIVATE ${SET_HEADERS})
    set(CALVERIN_PRECOMPILED ${name} PARENT_SCOPE)
endfunction()

function(calverin_use_precompiled name)
    if(CMAKE_UNITY_BUILD AND CALVERIN_PRECOMPILED)
        target_precompile_headers(${name} REUSE_FROM ${CALVERIN_PRECOMPILED})
    endif()
endfunction()
