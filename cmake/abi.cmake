# The ABI baseline check: libispdsp.so against abi/libispdsp.abi (abidiff).
# Native GCC builds only: the baseline is GCC's debug information of the
# x86-64 build (the same LP64 headers as the device); another compiler
# describes the same records with small differences of its own.
# scripts/update-abi-baseline.sh writes a new baseline deliberately.
if(NOT ISPDSP_BUILD_TESTS OR CMAKE_CROSSCOMPILING OR NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  return()
endif()
find_program(ISPDSP_ABIDIFF abidiff)
find_program(ISPDSP_ABIDW abidw)
if(NOT ISPDSP_ABIDIFF OR NOT ISPDSP_ABIDW)
  message(WARNING "abigail-tools not found: the ABI baseline check is not run")
  return()
endif()
add_test(NAME abi_baseline
  COMMAND ${PROJECT_SOURCE_DIR}/tests/package/abi.sh check
          $<TARGET_FILE:ispdsp> ${PROJECT_SOURCE_DIR}/include/ispdsp
          ${PROJECT_SOURCE_DIR}/abi/libispdsp.abi)
# 77: built without debug information, nothing to compare.
set_tests_properties(abi_baseline PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 120)
