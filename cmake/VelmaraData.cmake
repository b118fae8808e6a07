# `cmake --install BUILD --component data` puts the data files where the library looks for them: below
# VELMARA_DATA_ROOT, or at their fixed places if that is empty. The fixed places do not follow the
# prefix of the other components, so the component is left out unless it is asked for. The word lists
# are built by velmara-dict; a build without tools leaves them out.
set(velmara_stage_words "")
if(VELMARA_BUILD_TOOLS)
    set(velmara_stage_words "
    execute_process(COMMAND \"${PROJECT_SOURCE_DIR}/data/stage-words.sh\" \"\${velmara_data}\"
        \"${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/velmara-dict\" OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)")
endif()
install(CODE "
    set(velmara_data \"\$ENV{DESTDIR}${VELMARA_DATA_ROOT}/\")
    execute_process(COMMAND \"${PROJECT_SOURCE_DIR}/data/stage-data.sh\" \"\${velmara_data}\"
        COMMAND_ERROR_IS_FATAL ANY)${velmara_stage_words}
    message(STATUS \"Installed the data files below \${velmara_data}\")"
    COMPONENT data EXCLUDE_FROM_ALL)
