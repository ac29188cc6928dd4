# Tests in Python: zrv_add_python_test(<name> <script> <label>) makes each test method of the script a
# test of its own, run with the description of this build at hand (tests/support/project.py).
find_package(Python3 REQUIRED COMPONENTS Interpreter)
find_program(ZRV_CLANG NAMES clang)
find_program(ZRV_CLANG_FORMAT NAMES clang-format-14 clang-format)

set(has_command false)
if(TARGET zrvcomn_command)
  set(has_command true)
endif()
set(python_config ${CMAKE_BINARY_DIR}/tests/build.json)
file(
  GENERATE
  OUTPUT ${python_config}
  CONTENT
    "{
  \"source_dir\": \"${CMAKE_SOURCE_DIR}\",
  \"binary_dir\": \"${CMAKE_BINARY_DIR}\",
  \"version\": \"${PROJECT_VERSION}\",
  \"pointer_size\": ${CMAKE_SIZEOF_VOID_P},
  \"cmake\": \"${CMAKE_COMMAND}\",
  \"build_type\": \"${CMAKE_BUILD_TYPE}\",
  \"generator\": \"${CMAKE_GENERATOR}\",
  \"toolchain\": \"${CMAKE_TOOLCHAIN_FILE}\",
  \"c_compiler\": \"${CMAKE_C_COMPILER}\",
  \"cxx_compiler\": \"${CMAKE_CXX_COMPILER}\",
  \"c_flags\": \"${CMAKE_C_FLAGS}\",
  \"cxx_flags\": \"${CMAKE_CXX_FLAGS}\",
  \"clang\": \"${ZRV_CLANG}\",
  \"clang_format\": \"${ZRV_CLANG_FORMAT}\",
  \"nm\": \"${CMAKE_NM}\",
  \"readelf\": \"${CMAKE_READELF}\",
  \"bin_dir\": \"${CMAKE_INSTALL_BINDIR}\",
  \"libdir\": \"${CMAKE_INSTALL_LIBDIR}\",
  \"include_dir\": \"${CMAKE_INSTALL_INCLUDEDIR}\",
  \"home_dir\": \"${ZRV_HOME_DIR}\",
  \"has_command\": ${has_command},
  \"zrvcomn\": \"$<TARGET_FILE:zrvcomn>\",
  \"zrvintl\": \"$<TARGET_FILE:zrvintl>\",
  \"zrvunic\": \"$<TARGET_FILE:zrvunic>\",
  \"velcrypto\": \"$<TARGET_FILE:velcrypto>\",
  \"velssfs\": \"$<TARGET_FILE:velssfs>\"
}
")

function(zrv_add_python_test name script label)
  set(path ${CMAKE_CURRENT_SOURCE_DIR}/${script})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${path})
  file(STRINGS ${path} methods REGEX "^ +def test_")
  foreach(line IN LISTS methods)
    string(REGEX REPLACE "^ +def (test_[a-z0-9_]+).*" "\\1" method ${line})
    string(REGEX REPLACE "^test_" "" short ${method})
    add_test(NAME ${name}.${short} COMMAND Python3::Interpreter ${path} ${method})
    set_tests_properties(
      ${name}.${short}
      PROPERTIES
        LABELS ${label}
        TIMEOUT 600
        COST 100 # the long ones are among them, so they start first
        ENVIRONMENT
        "ZRV_BUILD=${python_config};PYTHONPATH=${CMAKE_SOURCE_DIR}/tests/support;PYTHONDONTWRITEBYTECODE=1;PYTHONUTF8=1"
    )
  endforeach()
endfunction()
