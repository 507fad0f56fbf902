# How the products are linked.

# Programs that link the archive also need the libraries that the shared library names itself.
if(UNIX)
  target_link_libraries(orv_static INTERFACE m)
  set(ORV_PC_PRIVATE_LIBRARIES -lm)
endif()

# The shared library exports what the header declares, and nothing that an object brings along.
if(UNIX AND NOT APPLE)
  set(ORV_VERSION_SCRIPT ${CMAKE_CURRENT_LIST_DIR}/orv.map)
  target_link_options(orv PRIVATE LINKER:--version-script=${ORV_VERSION_SCRIPT})
  set_target_properties(orv PROPERTIES LINK_DEPENDS ${ORV_VERSION_SCRIPT})
endif()
