# The example scripts once more through the bvxcad executable itself: from a
# file and from standard input, printed output and exit status. The test
# suite runs them through the script runner on every platform; this checks
# the command around it, natively.
if(CMAKE_CROSSCOMPILING OR NOT TARGET bvxcad)
  return()
endif()
file(GLOB BVX_EXAMPLE_SCRIPTS CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/examples/*.bvxs)
foreach(script ${BVX_EXAMPLE_SCRIPTS})
  get_filename_component(name ${script} NAME_WE)
  add_test(NAME example_${name}
    COMMAND ${CMAKE_COMMAND} -DBVXCAD=$<TARGET_FILE:bvxcad> -DSCRIPT=${script}
            -DEXPECTED=${PROJECT_SOURCE_DIR}/examples/${name}.expected
            -P ${PROJECT_SOURCE_DIR}/cmake/RunScriptExample.cmake)
endforeach()
add_test(NAME example_shapes_from_stdin
  COMMAND ${CMAKE_COMMAND} -DBVXCAD=$<TARGET_FILE:bvxcad> -DSCRIPT=${PROJECT_SOURCE_DIR}/examples/shapes.bvxs
          -DEXPECTED=${PROJECT_SOURCE_DIR}/examples/shapes.expected -DSTDIN=ON
          -P ${PROJECT_SOURCE_DIR}/cmake/RunScriptExample.cmake)

# The drawing as a bitmap file, read back by another program than ours.
find_program(BVX_BMPTOPNM bmptopnm)
if(BVX_BMPTOPNM)
  add_test(NAME export_readback COMMAND bash ${PROJECT_SOURCE_DIR}/tests/hosts/export_readback.sh $<TARGET_FILE:bvxcad>)
endif()
