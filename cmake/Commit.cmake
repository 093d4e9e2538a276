# Writes the commit of the sources into a header, if it is another one than before; "unknown" where there is none to be had.
#   cmake -D SOURCES=FOLDER -D HEADER=FILE -P Commit.cmake
execute_process(COMMAND git -C ${SOURCES} rev-parse --short=10 HEAD
    OUTPUT_VARIABLE commit ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE failed)
if(failed OR NOT EXISTS ${SOURCES}/.git)
    set(commit unknown)
endif()
set(text "#define STAGEHOST_COMMIT \"${commit}\"\n")
set(before "")
if(EXISTS ${HEADER})
    file(READ ${HEADER} before)
endif()
if(NOT text STREQUAL before)
    file(WRITE ${HEADER} "${text}")
endif()
