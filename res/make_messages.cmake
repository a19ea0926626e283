# Makes of the list of texts what a system's message library is built from.
#
# cmake -DLIST=messages.txt -DNUMBERS=error_number.h -DROWS=FILE | -DSTRING_TABLE=FILE -P make_messages.cmake
# ROWS takes rows of a table in C++, STRING_TABLE a resource script.
file(STRINGS ${LIST} lines ENCODING UTF-8 REGEX "^[^#]")
file(READ ${NUMBERS} numbers)
foreach(line IN LISTS lines)
    if(NOT line MATCHES "^(PM_ERR_[A-Z_]+) ([^\"\\]+)$")
        message(FATAL_ERROR "${LIST}: neither a name and a text nor a comment: ${line}")
    endif()
    set(name ${CMAKE_MATCH_1})
    set(text "${CMAKE_MATCH_2}")
    if(NOT numbers MATCHES "[ \n]${name} = ([0-9]+)")
        message(FATAL_ERROR "${NUMBERS}: there is no ${name}")
    endif()
    string(APPEND rows "{${name}, u\"${text}\"},\n")
    string(APPEND strings "    ${CMAKE_MATCH_1} \"${text}\"\n")
endforeach()
if(ROWS)
    file(WRITE ${ROWS} "${rows}")
endif()
if(STRING_TABLE)
    file(WRITE ${STRING_TABLE} "LANGUAGE 9, 1\nSTRINGTABLE\nBEGIN\n${strings}END\n")
endif()
