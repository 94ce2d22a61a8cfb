# Turns the export list into a module-definition file.
# Each exported symbol's object-file name is NAME@BYTES; the DLL exports it as "_NAME@BYTES" and,
# unless marked "decorated", as "NAME" too.
# Writes two module-definition files from the export list: the linker's (what the DLL exports) and the
# import library's (each stdcall symbol NAME@BYTES bound to the export "_NAME@BYTES", so that hosts
# declaring the functions __stdcall link against it).
function(brannoc_generate_def list_file def_file import_def_file dll_name)
    file(STRINGS ${list_file} lines)
    set(out "LIBRARY ${dll_name}\nEXPORTS\n")
    set(import_out "LIBRARY ${dll_name}\nEXPORTS\n")
    foreach(line IN LISTS lines)
        string(STRIP "${line}" line)
        if(line STREQUAL "" OR line MATCHES "^#")
            continue()
        endif()
        string(REGEX REPLACE "[ \t]+" ";" fields "${line}")
        list(GET fields 0 name)
        list(GET fields 1 bytes)
        list(LENGTH fields count)
        string(APPEND out "    _${name}@${bytes} = ${name}@${bytes}\n")
        string(APPEND import_out "    ${name}@${bytes} == _${name}@${bytes}\n")
        if(count LESS 3)
            string(APPEND out "    ${name} = ${name}@${bytes}\n")
        endif()
    endforeach()
    file(WRITE ${def_file}.tmp "${out}")
    file(COPY_FILE ${def_file}.tmp ${def_file} ONLY_IF_DIFFERENT)
    file(WRITE ${import_def_file}.tmp "${import_out}")
    file(COPY_FILE ${import_def_file}.tmp ${import_def_file} ONLY_IF_DIFFERENT)
endfunction()
