# `cmake --install BUILD --component data` puts the data files where the library looks for them: below
# VELMARA_DATA_ROOT, or at their fixed places if that is empty. The fixed places do not follow the
# prefix of the other components, so the component is left out unless it is asked for.
install(CODE "
    execute_process(COMMAND \"${PROJECT_SOURCE_DIR}/data/stage-data.sh\" \"\$ENV{DESTDIR}${VELMARA_DATA_ROOT}/\"
        COMMAND_ERROR_IS_FATAL ANY)
    message(STATUS \"Installed the data files below \$ENV{DESTDIR}${VELMARA_DATA_ROOT}/\")"
    COMPONENT data EXCLUDE_FROM_ALL)
