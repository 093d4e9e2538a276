# A folder of the tree is one static library, named after its path with points ("foundation.text"). It names its files
# and the neighbours that it uses; headers are included by their bare name, and only those of a neighbour that is named
# can be found. A neighbour's own neighbours are linked along, but what their headers hold stays hidden: an include of a
# folder that is not named, be it through another header, does not even compile.
#
#   calverin_folder(foundation.commands
#       SOURCES MCommandObject.h MCommandObject.cpp
#       USES foundation.text foundation.threads)
#
# A test sees what its subject sees: <name>.open stands for a folder, all that it uses, and all that these use in turn.
# Only tests and benchmarks link it.
#
# With QT the folder may use Qt: texts are never converted from 8 bits by accident. With MOC it has classes with Q_OBJECT as well, and
# with DIALOGS forms drawn in Designer: a source that includes ui_X.h has X.ui beside it. Each costs a second or two of every build.
function(calverin_folder name)
    cmake_parse_arguments(FOLDER "QT;MOC;DIALOGS" "" "SOURCES;USES" ${ARGN})
    add_library(${name} STATIC ${FOLDER_SOURCES})
    set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
    target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${name} PRIVATE ${FOLDER_USES})
    add_library(${name}.open INTERFACE)
    target_link_libraries(${name}.open INTERFACE ${name})
    foreach(used IN LISTS FOLDER_USES)
        if(used MATCHES "^[a-zA-Z.]+$") # a folder, perhaps one that is told of later; others bring what they need along
            set(used $<IF:$<TARGET_EXISTS:${used}.open>,${used}.open,${used}>)
        endif()
        target_link_libraries(${name}.open INTERFACE ${used})
    endforeach()
    if(FOLDER_QT)
        calverin_use_qt(${name})
    endif()
    set(resources ${FOLDER_SOURCES})
    list(FILTER resources INCLUDE REGEX "\\.qrc$")
    if(resources)
        set_target_properties(${name} PROPERTIES AUTORCC ON)
    endif()
    set_target_properties(${name} PROPERTIES AUTOMOC ${FOLDER_MOC} AUTOUIC ${FOLDER_DIALOGS})
endfunction()

# Qt settings for one target: no keywords in lower case, no silent conversion between 8-bit text and QString.
set(CALVERIN_QT_DEFINITIONS QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_DEPRECATED_WARNINGS)
function(calverin_use_qt name)
    target_compile_definitions(${name} PRIVATE ${CALVERIN_QT_DEFINITIONS})
    calverin_use_precompiled(${name})
endfunction()

# Registers a GoogleTest program with ctest:
#   calverin_test(<target> [PRODUCT] [TIMEOUT seconds] [SHARDS n] [ENVIRONMENT VAR=value...])
# It carries the label "unit", so that the sanitizers run it too, unless it is of the PRODUCT: one that tests files and programs as
# they are shipped.
function(calverin_test name)
    cmake_parse_arguments(TEST "PRODUCT" "TIMEOUT;SHARDS" "ENVIRONMENT" ${ARGN})
    set(label unit)
    if(TEST_PRODUCT)
        set(label product)
    else()
        add_dependencies(unit_tests ${name})
    endif()
    if(NOT TEST_TIMEOUT)
        set(TEST_TIMEOUT 300)
    endif()
    if(NOT TEST_SHARDS)
        set(TEST_SHARDS 1)
    endif()
    math(EXPR last "${TEST_SHARDS} - 1")
    foreach(shard RANGE ${last})
        set(test_name ${name})
        if(TEST_SHARDS GREATER 1)
            set(test_name ${name}.${shard})
        endif()
        add_test(NAME ${test_name} COMMAND ${name} --gtest_brief=1)
        set_tests_properties(${test_name} PROPERTIES LABELS ${label} TIMEOUT ${TEST_TIMEOUT} ENVIRONMENT
            "GTEST_TOTAL_SHARDS=${TEST_SHARDS};GTEST_SHARD_INDEX=${shard};${CALVERIN_SANITIZER_ENVIRONMENT};${TEST_ENVIRONMENT}")
    endforeach()
endfunction()
