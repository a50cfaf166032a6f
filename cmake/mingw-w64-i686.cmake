# Cross build for 32-bit Windows, for 32-bit hosts of the OLE control.
set(BVX_MINGW_PROCESSOR i686)
include(${CMAKE_CURRENT_LIST_DIR}/MingwToolchain.cmake)
