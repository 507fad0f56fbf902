# The rooms of the house. Each is a target with its own include path, so that an include against the arrows
# (_src -> kernels -> kernels/services -> platform; all but kernels -> status) does not compile.

# What one room offers to others, by include path.
set(ORV_PUBLIC_DIR ${PROJECT_SOURCE_DIR}/include)
set(ORV_PLATFORM_DIR ${PROJECT_SOURCE_DIR}/platform)
set(ORV_KERNEL_DIRS ${PROJECT_SOURCE_DIR}/kernels/dispatch ${PROJECT_SOURCE_DIR}/kernels/services)
set(ORV_REGION_DIR ${PROJECT_SOURCE_DIR}/kernels/region)

set(ORV_PLATFORM_SOURCES platform/message_box.cpp)
set(ORV_STATUS_SOURCES status/reporting.cpp status/handlers.cpp)

# Compiled once, with the target's base instructions.
set(ORV_PLAIN_KERNEL_SOURCES
  kernels/dispatch/classify.cpp
  kernels/dispatch/table.cpp
  kernels/services/memory.cpp
  kernels/copy/copy.cpp
  kernels/copy/jaehne.cpp
  kernels/transform/cosine_plans.cpp
  kernels/transform/plan_building.cpp
  kernels/transform/plans.cpp
  kernels/transform/roots.cpp)

# Compiled once a slot.
set(ORV_KERNEL_SOURCES
  kernels/services/convert.cpp
  kernels/copy/channels.cpp
  kernels/copy/fill.cpp
  kernels/copy/masked.cpp
  kernels/arith/abs.cpp
  kernels/arith/binary.cpp
  kernels/arith/constants.cpp
  kernels/arith/fractions.cpp
  kernels/arith/square.cpp
  kernels/arith/widen.cpp
  kernels/filter/box.cpp
  kernels/filter/color_median.cpp
  kernels/filter/convolve.cpp
  kernels/filter/convolve_floats.cpp
  kernels/filter/extremes.cpp
  kernels/filter/fixed.cpp
  kernels/filter/fixed_floats.cpp
  kernels/filter/median.cpp
  kernels/geometry/mirror.cpp
  kernels/geometry/resize_axis.cpp
  kernels/geometry/resize_box.cpp
  kernels/geometry/resize_cubic.cpp
  kernels/geometry/resize_halve.cpp
  kernels/geometry/resize_linear.cpp
  kernels/geometry/resize_nearest.cpp
  kernels/geometry/resize_sums.cpp
  kernels/hist/histogram.cpp
  kernels/hist/scale.cpp
  kernels/hist/table.cpp
  kernels/hist/threshold.cpp
  kernels/logic/logic.cpp
  kernels/logic/shift.cpp
  kernels/measure/minmax.cpp
  kernels/measure/norm.cpp
  kernels/measure/norm_floats.cpp
  kernels/morph/morphology.cpp
  kernels/transform/batch.cpp
  kernels/transform/dct.cpp
  kernels/transform/dct8.cpp
  kernels/transform/fft2d.cpp
  kernels/transform/sequence.cpp)

# The rooms of the front end's frame. A room sees itself, and those that its target names.
set(ORV_FRAME ${PROJECT_SOURCE_DIR}/_src/frame)
set(ORV_FRAME_IMAGE_SOURCES
  _src/frame/image/area.cpp
  _src/frame/image/call_images.cpp
  _src/frame/image/channel_kernels.cpp
  _src/frame/image/delivery.cpp
  _src/frame/image/float_conversions.cpp
  _src/frame/image/operand.cpp
  _src/frame/image/rectangle_call.cpp)
set(ORV_FRAME_CHECKS_SOURCES
  _src/frame/checks/comparisons.cpp
  _src/frame/checks/header_check.cpp)
set(ORV_FRAME_MEASURE_SOURCES
  _src/frame/measure/measure.cpp)
set(ORV_FRAME_POINTWISE_SOURCES
  _src/frame/pointwise/pointwise.cpp)
set(ORV_FRAME_PLANES_SOURCES
  _src/frame/planes/planes.cpp)
set(ORV_FRAME_WINDOW_SOURCES
  _src/frame/window/border.cpp
  _src/frame/window/float_samples.cpp
  _src/frame/window/window.cpp)

# One unit a family, and what the units of related families share.
set(ORV_FRONT_SOURCES
  _src/filter/coefficients.cpp
  _src/hist/level_counts.cpp
  _src/hist/lookup_tables.cpp
  _src/geometry/box_means.cpp
  _src/geometry/box_table.cpp
  _src/geometry/resize_loops.cpp
  _src/geometry/resize_tables.cpp
  _src/morph/morphology.cpp
  _src/transform/plane_transform.cpp
  _src/orvBlur.cpp
  _src/orvCSep2.cpp
  _src/orvClone.cpp
  _src/orvGetPx.cpp
  _src/orvNorm.cpp
  _src/orvPutPx.cpp
  _src/orvabs.cpp
  _src/orvadd.cpp
  _src/orvadds.cpp
  _src/orvaddsf.cpp
  _src/orvalloc.cpp
  _src/orvalpha.cpp
  _src/orvand.cpp
  _src/orvborde.cpp
  _src/orvcnv2d.cpp
  _src/orvclose.cpp
  _src/orvcnv2d_records.cpp
  _src/orvdct2d.cpp
  _src/orvdilat.cpp
  _src/orverode.cpp
  _src/orvfft2d.cpp
  _src/orvgenim.cpp
  _src/orvhist.cpp
  _src/orvlshs.cpp
  _src/orvmirr.cpp
  _src/orvmnmxf.cpp
  _src/orvmul.cpp
  _src/orvmuls.cpp
  _src/orvnlf.cpp
  _src/orvnlf_color.cpp
  _src/orvnlf_fixed.cpp
  _src/orvopen.cpp
  _src/orvor.cpp
  _src/orvresiz.cpp
  _src/orvrshs.cpp
  _src/orvsce.cpp
  _src/orvsqr.cpp
  _src/orvsub.cpp
  _src/orvsubs.cpp
  _src/orvsubsf.cpp
  _src/orvthres.cpp
  _src/orvxor.cpp)

# orv_room(name SOURCES ... INCLUDES ...): the objects of one room, position-independent and hidden.
function(orv_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;INCLUDES" ${ARGN})
  list(TRANSFORM ROOM_SOURCES PREPEND ${PROJECT_SOURCE_DIR}/)
  add_library(${name} OBJECT ${ROOM_SOURCES})
  target_include_directories(${name} PRIVATE ${ROOM_INCLUDES})
  target_link_libraries(${name} PRIVATE orv_options)
  set_target_properties(${name} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
endfunction()

orv_room(orv_platform SOURCES ${ORV_PLATFORM_SOURCES} INCLUDES ${ORV_PLATFORM_DIR})
orv_room(orv_status SOURCES ${ORV_STATUS_SOURCES}
  INCLUDES ${ORV_PUBLIC_DIR} ${ORV_PLATFORM_DIR} ${PROJECT_SOURCE_DIR}/status)
orv_room(orv_kernels_plain SOURCES ${ORV_PLAIN_KERNEL_SOURCES} INCLUDES ${ORV_KERNEL_DIRS})
target_compile_options(orv_kernels_plain PRIVATE ${ORV_KERNEL_OPTIMISATION} ${ORV_PLAIN_OPTIONS})

# orv_front_room(name SOURCES ... SEES rooms...): a room of the front end, which includes files of its own and of the
# rooms of the frame that it sees.
function(orv_front_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;SEES" ${ARGN})
  list(TRANSFORM ROOM_SEES PREPEND ${ORV_FRAME}/)
  orv_room(${name} SOURCES ${ROOM_SOURCES}
    INCLUDES ${ORV_PUBLIC_DIR} ${ORV_KERNEL_DIRS} ${ROOM_SEES})
  target_compile_options(${name} PRIVATE ${ORV_KERNEL_OPTIMISATION} ${ORV_PLAIN_OPTIONS})
endfunction()

set(ORV_FRAMES image checks pointwise window planes measure)
orv_front_room(orv_frame_image SOURCES ${ORV_FRAME_IMAGE_SOURCES} SEES image)
orv_front_room(orv_frame_checks SOURCES ${ORV_FRAME_CHECKS_SOURCES} SEES checks image)
foreach(frame pointwise window planes measure)
  string(TOUPPER ${frame} FRAME)
  orv_front_room(orv_frame_${frame} SOURCES ${ORV_FRAME_${FRAME}_SOURCES} SEES ${frame} checks image)
endforeach()
orv_front_room(orv_front SOURCES ${ORV_FRONT_SOURCES} SEES ${ORV_FRAMES})
target_include_directories(orv_front PRIVATE ${PROJECT_SOURCE_DIR}/_src)

# For tests, which reach all internals.
list(TRANSFORM ORV_FRAMES PREPEND ${ORV_FRAME}/ OUTPUT_VARIABLE ORV_FRONT_DIRS)
list(APPEND ORV_FRONT_DIRS ${PROJECT_SOURCE_DIR}/_src)
list(TRANSFORM ORV_FRAMES PREPEND orv_frame_ OUTPUT_VARIABLE ORV_FRAME_ROOMS)

set(ORV_ROOMS orv_platform orv_status orv_kernels_plain ${ORV_FRAME_ROOMS} orv_front)

# The seven builds. orv_kernel_slots(prefix options...) makes the targets prefix0 to prefix6.
function(orv_kernel_slots prefix)
  foreach(slot RANGE 6)
    orv_room(${prefix}${slot} SOURCES ${ORV_KERNEL_SOURCES} INCLUDES ${ORV_KERNEL_DIRS} ${ORV_REGION_DIR})
    target_compile_definitions(${prefix}${slot} PRIVATE ORV_SLOT=${slot})
    # Functions with wide vectors among their parameters are internal to a source, so that no binary interface matters.
    target_compile_options(${prefix}${slot} PRIVATE ${ARGN} $<$<CXX_COMPILER_ID:GNU>:-Wno-psabi>)
    if(slot EQUAL 0)
      target_compile_options(${prefix}${slot} PRIVATE ${ORV_PLAIN_OPTIONS})
    endif()
  endforeach()
endfunction()

orv_kernel_slots(orv_kernels_slot ${ORV_KERNEL_OPTIMISATION})
foreach(slot RANGE 6)
  list(APPEND ORV_ROOMS orv_kernels_slot${slot})
endforeach()

set(ORV_OBJECTS)
foreach(room IN LISTS ORV_ROOMS)
  list(APPEND ORV_OBJECTS $<TARGET_OBJECTS:${room}>)
endforeach()

add_library(orv SHARED ${ORV_OBJECTS})
add_library(orv_static STATIC ${ORV_OBJECTS})
set_target_properties(orv PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
set_target_properties(orv_static PROPERTIES OUTPUT_NAME orv)
foreach(product orv orv_static)
  target_include_directories(${product} PUBLIC
    $<BUILD_INTERFACE:${ORV_PUBLIC_DIR}> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
endforeach()
add_library(orv::orv ALIAS orv)
add_library(orv::orv_static ALIAS orv_static)
