# The face networks: the npm package @mediapipe/face_mesh, fetched into the download cache
# by scripts/fetch-face-model.sh, converted to ONNX by tools/face_model with Debian's
# Python modules. Without the package or the modules the build goes on without them, and
# the programs say that face lines are not available.
set(PLYRA_FACE_MESH_VERSION 0.4.1657299874)
if(DEFINED ENV{PLYRA_DOWNLOAD_CACHE} AND NOT "$ENV{PLYRA_DOWNLOAD_CACHE}" STREQUAL "")
  set(plyra_download_cache "$ENV{PLYRA_DOWNLOAD_CACHE}")
elseif(DEFINED ENV{XDG_CACHE_HOME} AND NOT "$ENV{XDG_CACHE_HOME}" STREQUAL "")
  set(plyra_download_cache "$ENV{XDG_CACHE_HOME}/plyra")
else()
  set(plyra_download_cache "$ENV{HOME}/.cache/plyra")
endif()
set(PLYRA_FACE_MESH_PACKAGE "${plyra_download_cache}/mediapipe-face_mesh-${PLYRA_FACE_MESH_VERSION}.tgz"
  CACHE FILEPATH "The npm package @mediapipe/face_mesh (.tgz) the face networks are taken from")
set(PLYRA_FACE_MODEL_DIR ${PROJECT_BINARY_DIR}/resources/face)
set(PLYRA_HAVE_FACE_MODELS OFF)

# Debian's Python, which has the onnx, flatbuffers and numpy modules.
find_program(PLYRA_SYSTEM_PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH)
if(PLYRA_SYSTEM_PYTHON)
  execute_process(COMMAND ${PLYRA_SYSTEM_PYTHON} -c "import onnx, flatbuffers, numpy"
    RESULT_VARIABLE plyra_python_status OUTPUT_QUIET ERROR_QUIET)
endif()
set(PLYRA_HAVE_FACE_CONVERTER OFF)
if(PLYRA_SYSTEM_PYTHON AND plyra_python_status EQUAL 0)
  set(PLYRA_HAVE_FACE_CONVERTER ON)
endif()
if(NOT EXISTS "${PLYRA_FACE_MESH_PACKAGE}")
  message(STATUS "Face lines: off (no ${PLYRA_FACE_MESH_PACKAGE}; scripts/fetch-face-model.sh fetches it, then run cmake again)")
elseif(NOT PLYRA_HAVE_FACE_CONVERTER)
  message(STATUS "Face lines: off (the converter needs python3-onnx, python3-flatbuffers and python3-numpy)")
else()
  set(PLYRA_HAVE_FACE_MODELS ON)
  message(STATUS "Face lines: on")
  set(face_networks ${PLYRA_FACE_MODEL_DIR}/face_detection_short_range.onnx ${PLYRA_FACE_MODEL_DIR}/face_landmark.onnx)
  file(GLOB converter CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/face_model/*.py)
  add_custom_command(OUTPUT ${face_networks}
    COMMAND ${PLYRA_SYSTEM_PYTHON} -B ${PROJECT_SOURCE_DIR}/tools/face_model/build_face_models.py
      ${PLYRA_FACE_MESH_PACKAGE} ${PLYRA_FACE_MODEL_DIR}
    DEPENDS ${PLYRA_FACE_MESH_PACKAGE} ${converter}
    COMMENT "Converting the face networks to ONNX")
  # The package carries no licence file of its own; its licence is Apache-2.0.
  add_custom_target(plyra_face_models ALL DEPENDS ${face_networks})
  configure_file(/usr/share/common-licenses/Apache-2.0 ${PLYRA_FACE_MODEL_DIR}/LICENSE COPYONLY)
  install(FILES ${face_networks} ${PLYRA_FACE_MODEL_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/plyra/face)
endif()
