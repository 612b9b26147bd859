# The update signing keys built into the app. A build for distribution must trust exactly the
# publisher's key(s): configuring one without a key, or with anything that is not an Ed25519
# public key, stops here rather than shipping an app that trusts nothing or the wrong thing.
#
#   velmora_trusted_keys(OUT_VAR KEYS KEY_FILE DISTRIBUTION)
#     KEYS      base64 public keys, comma-separated (may be empty)
#     KEY_FILE  a "velmora-public-key <base64>" file, as `velmora-catalogue keygen` writes it
#
# Also runs as a script, for the tests:
#   cmake -DKEYS=... -DKEY_FILE=... -DDISTRIBUTION=ON -P cmake/TrustedKeys.cmake

function(velmora_trusted_keys out keys key_file distribution)
  set(all "")
  if(keys)
    string(REPLACE "," ";" all "${keys}")
  endif()
  if(key_file)
    if(NOT EXISTS "${key_file}")
      message(FATAL_ERROR "The update signing key file ${key_file} does not exist")
    endif()
    file(STRINGS "${key_file}" lines LIMIT_COUNT 1)
    if(NOT lines MATCHES "^velmora-public-key ([^ ]+)$")
      message(FATAL_ERROR "${key_file} is not a velmora-public-key file")
    endif()
    list(APPEND all "${CMAKE_MATCH_1}")
  endif()
  set(valid "")
  foreach(key IN LISTS all)
    string(STRIP "${key}" key)
    # 32 bytes in base64: 43 characters, the last carrying 4 bits only, and one "=".
    if(NOT key MATCHES "^[A-Za-z0-9+/][A-Za-z0-9+/][A-Za-z0-9+/]*[AEIMQUYcgkosw048]=$")
      message(FATAL_ERROR "\"${key}\" is not an update signing public key (base64 of 32 bytes)")
    endif()
    string(LENGTH "${key}" length)
    if(NOT length EQUAL 44)
      message(FATAL_ERROR "\"${key}\" is not an update signing public key (base64 of 32 bytes)")
    endif()
    list(APPEND valid "${key}")
  endforeach()
  if(distribution AND NOT valid)
    message(FATAL_ERROR "A distribution build must trust the publisher's update signing key: "
                        "give -DVELMORA_TRUSTED_KEYS=<base64> or -DVELMORA_TRUSTED_KEY_FILE=<velmora-signing.pub>")
  endif()
  list(JOIN valid "," joined)
  set(${out} "${joined}" PARENT_SCOPE)
endfunction()

if(CMAKE_SCRIPT_MODE_FILE STREQUAL CMAKE_CURRENT_LIST_FILE)
  velmora_trusted_keys(result "${KEYS}" "${KEY_FILE}" "${DISTRIBUTION}")
  message(STATUS "trusted keys: ${result}")
endif()
