# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

# cmake -DNM=... -DLIBRARY=... -DLISTS=FILE|VERSION,... -P CheckExports.cmake
# Fails unless the library exports exactly the names in the lists, each list with its version of the interface.
execute_process(COMMAND ${NM} -D --defined-only --format=posix ${LIBRARY} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE " [^\n]*" "" symbols "${symbols}")
string(REGEX REPLACE "(OPCV_[A-Z0-9_.]+)@@OPCV_[A-Z0-9_.]+" "\\1" symbols "${symbols}")    # as LLVM's nm prints a version's mark
string(REGEX MATCHALL "[^\n]+" exported "${symbols}")
set(expected "")
string(REPLACE "," ";" LISTS "${LISTS}")
foreach(pair IN ITEMS ${LISTS})
    string(REPLACE "|" ";" pair "${pair}")
    list(GET pair 0 file)
    list(GET pair 1 version)
    file(STRINGS ${file} names)
    list(TRANSFORM names APPEND "@@${version}")
    list(APPEND expected ${names} ${version})    # the version's own mark as well
endforeach()

set(missing ${expected})
set(extra ${exported})
list(REMOVE_ITEM missing ${exported})
list(REMOVE_ITEM extra ${expected})
if(missing OR extra)
    message(FATAL_ERROR "Not exported: ${missing}\nExported but not listed: ${extra}")
endif()
list(LENGTH exported count)
message("${count} names, as listed")
