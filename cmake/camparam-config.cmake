# camparam::camparam  the parameter store; a host brings the functions of camparam/platform.h
# camparam::commands  the command kit, for hosts that clients are to list and save settings of
# camparam::platform  the reference host platform, for hosts that bring none of their own
include(CMakeFindDependencyMacro)
find_dependency(PkgConfig)
pkg_check_modules(CAMPARAM_CJSON REQUIRED QUIET IMPORTED_TARGET libcjson)

include(${CMAKE_CURRENT_LIST_DIR}/camparam_targets.cmake)

# The headers speak cJSON.
set_property(TARGET camparam::headers APPEND PROPERTY
    INTERFACE_LINK_LIBRARIES PkgConfig::CAMPARAM_CJSON)
