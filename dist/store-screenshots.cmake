# Draws the store screenshots with the app itself: a home holding the demo catalogue and base
# map, the English interface, the offscreen renderer at twice the window's pixels.
#   cmake -DAPP=velmora -DDEMO_DIR=build/demo -DOUT=build/appstream -P store-screenshots.cmake
set(home ${OUT}/home)
file(REMOVE_RECURSE ${home})
file(MAKE_DIRECTORY ${home}/Documents ${OUT})
file(GLOB catalogue ${DEMO_DIR}/velmora-2*.db)
file(COPY ${catalogue} ${DEMO_DIR}/velmora-demo.mbtiles ${DEMO_DIR}/velmora-demo-streets.mbtiles DESTINATION ${home}/Documents)

set(ENV{QT_QPA_PLATFORM} offscreen)
set(ENV{QT_SCALE_FACTOR} 2)
set(ENV{LANGUAGE} en)
set(ENV{LC_ALL} C.UTF-8)
set(ENV{TZ} UTC)
# Nothing leaves the machine while the screenshots are drawn.
set(ENV{VELMORA_UPDATE_URL} http://127.0.0.1:9/ios/last.txt)
set(ENV{VELMORA_ANALYTICS_URL} http://127.0.0.1:9/)
# No DNS-SD browse either: the machine's system bus (and its avahi-daemon) is out of reach.
set(ENV{DBUS_SYSTEM_BUS_ADDRESS} unix:path=/nonexistent/velmora-screenshots)
# A place of the capital with a menu and photographs.
foreach(shot "list=" "place=velmora://place/1729" "map=velmora://map")
  string(REGEX REPLACE "=.*" "" name "${shot}")
  string(REGEX REPLACE "^[a-z]+=" "" link "${shot}")
  set(open)
  if(link)
    set(open --open ${link})
  endif()
  execute_process(COMMAND ${APP} --home ${home} ${open} --screenshot ${OUT}/${name}.png
                  RESULT_VARIABLE status OUTPUT_QUIET ERROR_VARIABLE errors)
  if(NOT status EQUAL 0 OR NOT EXISTS ${OUT}/${name}.png)
    message(FATAL_ERROR "The ${name} screenshot failed (${status}): ${errors}")
  endif()
endforeach()
file(REMOVE_RECURSE ${home})
