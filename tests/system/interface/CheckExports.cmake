# cmake -DNM=... -DLIBRARY=... -DEXPECTED=... -P CheckExports.cmake
# Fails unless the library exports exactly the names in the list, all of the first version of the interface.
set(version OPCV_1.0)
execute_process(COMMAND ${NM} -D --defined-only --format=posix ${LIBRARY} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE " [^\n]*" "" symbols "${symbols}")
string(REGEX MATCHALL "[^\n]+" exported "${symbols}")
file(STRINGS ${EXPECTED} expected)
list(TRANSFORM expected APPEND "@@${version}")
list(APPEND expected ${version})    # the version's own mark

set(missing ${expected})
set(extra ${exported})
list(REMOVE_ITEM missing ${exported})
list(REMOVE_ITEM extra ${expected})
if(missing OR extra)
    message(FATAL_ERROR "Not exported: ${missing}\nExported but not listed: ${extra}")
endif()
list(LENGTH exported count)
message("${count} names, as listed")
