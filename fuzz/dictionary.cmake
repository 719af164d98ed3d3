# Writes the store targets' dictionary: the hand-picked words of tuning files and text paths
# (BASE), then every module name and member name the schemas in SCHEMAS declare, once each.
#   cmake -DBASE=store.dict -DSCHEMAS=schemas -DOUTPUT=store.dict -P dictionary.cmake
file(READ ${BASE} dictionary)
file(GLOB_RECURSE schema_files ${SCHEMAS}/*.json)
set(words "")
foreach(schema ${schema_files})
    file(READ ${schema} text)
    # Module names: the "names" a module registers and the order of a set manager.
    string(REGEX MATCHALL "\"(names|order)\": *\\[[^]]*\\]" lists "${text}")
    foreach(list_text ${lists})
        string(REGEX REPLACE "^\"(names|order)\": *\\[" "" list_text "${list_text}")
        string(REGEX MATCHALL "\"[A-Za-z_][A-Za-z0-9_]*\"" names "${list_text}")
        list(APPEND words ${names})
    endforeach()
    # Member names: the last word of "[repeated|optional] Type name[N]".
    string(REGEX MATCHALL "\"(repeated |optional )?[A-Za-z_][A-Za-z0-9_:]* [A-Za-z_][A-Za-z0-9_]*(\\[[^]\"]*\\])?\""
           members "${text}")
    foreach(member ${members})
        string(REGEX REPLACE "^.* ([A-Za-z_][A-Za-z0-9_]*)(\\[.*)?\"$" "\"\\1\"" name "${member}")
        list(APPEND words ${name})
    endforeach()
endforeach()
list(REMOVE_DUPLICATES words)
list(SORT words)
string(REPLACE ";" "\n" lines "${words}")
file(WRITE ${OUTPUT} "${dictionary}# From the schemas: module and member names.\n${lines}\n")
