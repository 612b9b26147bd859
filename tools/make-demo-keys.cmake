# Makes the demo's signing pair once: a rebuilt toolkit must not replace a key that earlier
# demo shelves were signed with (keygen refuses to), so an existing pair is only marked fresh.
if(EXISTS "${DIR}/velmora-signing.key")
  file(TOUCH "${DIR}/velmora-signing.pub")
else()
  execute_process(COMMAND "${TOOL}" keygen -o "${DIR}" OUTPUT_QUIET RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "velmora-catalogue keygen failed")
  endif()
endif()
