# The installed package: find_package(VUKSimPoolManager 1 CONFIG) gives VUKSim::PoolManager and
# VUKSim::Platform. All paths in it are relative to where it lies, so the tree can be moved.
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/VUKSimPoolManager")

install(TARGETS VUKSimPoolManager VUKSimPlatform
    EXPORT VUKSimPoolManagerTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/VUKSim/VUKSimRpm.m/include/"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/VUKSimPoolManager"
    FILES_MATCHING PATTERN "*.h")
file(GLOB platform_includes LIST_DIRECTORIES true "${VUKSIM_PLATFORM_DIR}/*/include")
foreach(folder IN LISTS platform_includes)
    install(DIRECTORY "${folder}/"
        DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/VUKSimPlatform"
        FILES_MATCHING PATTERN "*.h")
endforeach()

install(EXPORT VUKSimPoolManagerTargets
    NAMESPACE VUKSim::
    DESTINATION "${package_dir}")
configure_package_config_file(
    "${PROJECT_SOURCE_DIR}/cmake/VUKSimPoolManagerConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/VUKSimPoolManagerConfig.cmake"
    INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file(
    "${PROJECT_BINARY_DIR}/VUKSimPoolManagerConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/VUKSimPoolManagerConfig.cmake"
    "${PROJECT_BINARY_DIR}/VUKSimPoolManagerConfigVersion.cmake"
    DESTINATION "${package_dir}")
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}")
