# What QovXml.dll shows to Windows: its exports, the DLLs that it needs, its hardening and its version resource.
include(${CMAKE_CURRENT_LIST_DIR}/support/Run.cmake)

function(expect_equal what actual expected)
  if(NOT actual STREQUAL expected)
    message(SEND_ERROR "${what}: \"${actual}\" instead of \"${expected}\"")
  endif()
endfunction()

run(headers ${OBJDUMP} --private-headers ${DLL})

string(REGEX MATCHALL "DLL Name: [^\r\n]*" imports "${headers}")
list(TRANSFORM imports REPLACE "DLL Name: " "")
list(TRANSFORM imports TOLOWER)
list(SORT imports)
expect_equal("imported DLLs" "${imports}" "advapi32.dll;kernel32.dll;msvcrt.dll;ole32.dll")

string(REGEX MATCH "\\[Ordinal/Name Pointer\\] Table.*The Function Table" table "${headers}")
string(REGEX MATCHALL "\\[ *[0-9]+\\] [^ \r\n]*" exports "${table}")
list(TRANSFORM exports REPLACE "\\[ *[0-9]+\\] " "")
list(SORT exports)
expect_equal("exported members" "${exports}" "_ZN6QovXml16ConfigureQovXmlsERKNS_6ConfigER7ILogger;_ZN6QovXmlaSERKS_")

string(REGEX MATCHALL "HIGH_ENTROPY_VA|DYNAMIC_BASE|NX_COMPAT" flags "${headers}")
list(SORT flags)
expect_equal("hardening" "${flags}" "DYNAMIC_BASE;HIGH_ENTROPY_VA;NX_COMPAT")

# The resource holds its texts as UTF-16: "ProductVersion" and, two NUL units later, the version.
run(ignored ${OBJCOPY} --only-section=.rsrc --output-target=binary ${DLL} ${SCRATCH}/QovXml.rsrc)
run(version ${LAUNCHER} ${PROGRAM} --version)
string(STRIP "${version}" version)
expect_equal("version of the program" "${version}" "qovxml-configure ${VERSION}")
file(READ ${SCRATCH}/QovXml.rsrc resource HEX)
string(HEX "ProductVersion" name)
string(HEX "${VERSION}" number)
string(REGEX REPLACE "(..)" "\\100" name "${name}")
string(REGEX REPLACE "(..)" "\\100" number "${number}")
if(NOT resource MATCHES "${name}(0000)+${number}0000")
  message(SEND_ERROR "the version resource does not say ${VERSION}")
endif()
