# Renders one language of the manual: cmake -D CMARK_GFM=PROGRAM -D LANGUAGE=en -D FOLDER=FOLDER -P rendermanual.cmake
# What comes of it: FOLDER/manual.LANGUAGE.html, FOLDER/keys.LANGUAGE.html, which leads to the table of keys in the
# first, and FOLDER/manual with style sheet and pictures.
set(page manual.${LANGUAGE})
execute_process(
    COMMAND ${CMARK_GFM} --unsafe --extension table ${CMAKE_CURRENT_LIST_DIR}/${page}.md
    OUTPUT_VARIABLE body
    COMMAND_ERROR_IS_FATAL ANY)
# The other language is a page here too.
string(REGEX REPLACE "href=\"(manual[^\"]*)[.]md\"" "href=\"\\1.html\"" body "${body}")
string(REGEX MATCH "<h1>([^<]*)</h1>" heading "${body}")
set(head "<!DOCTYPE html>\n<html lang=\"${LANGUAGE}\">\n<head>\n<meta charset=\"utf-8\">\n<title>${CMAKE_MATCH_1}</title>\n")
file(WRITE ${FOLDER}/${page}.html
     "${head}<meta name=\"viewport\" content=\"width=device-width\">\n"
     "<link rel=\"stylesheet\" href=\"manual/manual.css\">\n</head>\n<body>\n${body}</body>\n</html>\n")
file(WRITE ${FOLDER}/keys.${LANGUAGE}.html
     "${head}<meta http-equiv=\"refresh\" content=\"0; url=${page}.html#keys\">\n</head>\n<body>\n"
     "<p><a href=\"${page}.html#keys\">${CMAKE_MATCH_1}</a></p>\n</body>\n</html>\n")
file(COPY ${CMAKE_CURRENT_LIST_DIR}/manual/manual.css DESTINATION ${FOLDER}/manual)
if(EXISTS ${CMAKE_CURRENT_LIST_DIR}/manual/${LANGUAGE})
    file(COPY ${CMAKE_CURRENT_LIST_DIR}/manual/${LANGUAGE} DESTINATION ${FOLDER}/manual)
endif()
