# Writes the code block of a language out of a document.
#
#   cmake -DDOCUMENT=rxf.md -DLANGUAGE=c -DOUTPUT=example.c -P take_example.cmake
file(READ "${DOCUMENT}" text)
set(opening "```${LANGUAGE}\n")
string(FIND "${text}" "${opening}" begin)
if(begin EQUAL -1)
  message(FATAL_ERROR "${DOCUMENT} has no ${LANGUAGE} example")
endif()
string(LENGTH "${opening}" length)
math(EXPR begin "${begin} + ${length}")
string(SUBSTRING "${text}" ${begin} -1 text)
string(FIND "${text}" "\n```" end)
string(SUBSTRING "${text}" 0 ${end} text)
file(WRITE "${OUTPUT}" "${text}\n")
