# The third-party code of the Windows cross build, taken from Debian's host packages without
# putting the host's /usr/include on the Windows compiler's path (its C headers would win).

# nlohmann/json is header-only: a copy of its headers serves the Windows compiler.
if(NOT TARGET nlohmann_json::nlohmann_json)
    set(VKL_JSON_HEADERS /usr/include/nlohmann)
    if(NOT EXISTS ${VKL_JSON_HEADERS}/json.hpp)
        message(FATAL_ERROR "nlohmann/json headers not found (Debian nlohmann-json3-dev)")
    endif()
    file(COPY ${VKL_JSON_HEADERS} DESTINATION ${CMAKE_BINARY_DIR}/third_party/include)
    add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
    set_target_properties(nlohmann_json::nlohmann_json PROPERTIES
        INTERFACE_INCLUDE_DIRECTORIES ${CMAKE_BINARY_DIR}/third_party/include)
endif()

# GoogleTest is built from Debian's sources (googletest) with the Windows compiler.
if(VKL_TESTS AND NOT TARGET GTest::gtest)
    set(VKL_GTEST_SOURCES /usr/src/googletest CACHE PATH "GoogleTest sources")
    if(NOT EXISTS ${VKL_GTEST_SOURCES}/CMakeLists.txt)
        message(FATAL_ERROR "GoogleTest sources not found at ${VKL_GTEST_SOURCES} (Debian googletest)")
    endif()
    set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
    set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
    add_subdirectory(${VKL_GTEST_SOURCES} ${CMAKE_BINARY_DIR}/third_party/googletest EXCLUDE_FROM_ALL)
endif()
