# Cross build for 64-bit Windows.
set(BVX_MINGW_PROCESSOR x86_64)
include(${CMAKE_CURRENT_LIST_DIR}/MingwToolchain.cmake)
