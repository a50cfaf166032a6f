# FreeType on every host, so that text has the same pixels everywhere: the
# system's library with fontconfig on Linux; for the MinGW and Emscripten
# builds, Debian's source package of the same version, unpacked at configure
# time and built here. Gives the target bvx_fonts to link.
add_library(bvx_fonts INTERFACE)
if(CMAKE_CROSSCOMPILING OR EMSCRIPTEN)
  set(BVX_FREETYPE_SOURCE ${CMAKE_BINARY_DIR}/_deps/freetype-src CACHE PATH "FreeType's source tree")
  if(NOT EXISTS ${BVX_FREETYPE_SOURCE}/CMakeLists.txt)
    message(STATUS "Fetching Debian's FreeType source into ${BVX_FREETYPE_SOURCE}")
    execute_process(COMMAND bash ${PROJECT_SOURCE_DIR}/scripts/fetch-freetype-source.sh ${BVX_FREETYPE_SOURCE}
                    RESULT_VARIABLE fetched)
    if(NOT fetched EQUAL 0)
      message(FATAL_ERROR "Could not fetch FreeType's source (scripts/fetch-freetype-source.sh)")
    endif()
  endif()
  # Only what reads TrueType and OpenType faces: no compressed fonts, no
  # PNG glyphs, no shaping.
  foreach(option FT_DISABLE_ZLIB FT_DISABLE_BZIP2 FT_DISABLE_PNG FT_DISABLE_HARFBUZZ FT_DISABLE_BROTLI SKIP_INSTALL_ALL)
    set(${option} ON CACHE BOOL "" FORCE)
  endforeach()
  set(BUILD_SHARED_LIBS OFF)
  enable_language(C)
  add_subdirectory(${BVX_FREETYPE_SOURCE} ${CMAKE_BINARY_DIR}/_deps/freetype-build EXCLUDE_FROM_ALL SYSTEM)
  # Not exported: an installed cross build would name it itself.
  target_link_libraries(bvx_fonts INTERFACE $<BUILD_INTERFACE:freetype>)
else()
  find_package(Freetype REQUIRED)
  find_package(Fontconfig REQUIRED)
  target_link_libraries(bvx_fonts INTERFACE Freetype::Freetype Fontconfig::Fontconfig)
  target_compile_definitions(bvx_fonts INTERFACE BVX_HAVE_FONTCONFIG=1)
endif()
