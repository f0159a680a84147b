# levmar is used where it is installed; otherwise src/support/numerics/bounded_fit.cpp does the work.
# Two signatures are in the field: with a scaling vector behind the upper bounds (2.6), and without.
include(CheckCXXSourceCompiles)
find_path(LEVMAR_INCLUDE_DIR NAMES levmar.h PATH_SUFFIXES levmar)
find_library(LEVMAR_LIBRARY NAMES levmar)
find_package(LAPACK QUIET)

add_library(trelm_levmar INTERFACE)
set(TRELM_LEVMAR "own")
if(LEVMAR_INCLUDE_DIR AND LEVMAR_LIBRARY)
    set(CMAKE_REQUIRED_INCLUDES ${LEVMAR_INCLUDE_DIR})
    set(CMAKE_REQUIRED_LIBRARIES ${LEVMAR_LIBRARY} ${LAPACK_LIBRARIES} m)
    foreach(scaling 1 0)
        if(scaling)
            set(scale_argument "0,")
        else()
            set(scale_argument "")
        endif()
        check_cxx_source_compiles("
            extern \"C\" {
            #include <levmar.h>
            }
            static void f(float *, float *, int, int, void *) {}
            int main() { return slevmar_bc_dif(f, 0, 0, 1, 1, 0, 0, ${scale_argument} 1, 0, 0, 0, 0, 0); }"
            TRELM_LEVMAR_SCALING_${scaling})
        if(TRELM_LEVMAR_SCALING_${scaling})
            set(TRELM_LEVMAR "library")
            target_include_directories(trelm_levmar INTERFACE ${LEVMAR_INCLUDE_DIR})
            target_link_libraries(trelm_levmar INTERFACE ${LEVMAR_LIBRARY} ${LAPACK_LIBRARIES} m)
            target_compile_definitions(trelm_levmar INTERFACE TRELM_LEVMAR_SCALING=${scaling})
            break()
        endif()
    endforeach()
    unset(CMAKE_REQUIRED_INCLUDES)
    unset(CMAKE_REQUIRED_LIBRARIES)
endif()
if(TRELM_LEVMAR STREQUAL "library")
    message(STATUS "Box-constrained minimiser: levmar, ${LEVMAR_LIBRARY}")
else()
    message(STATUS "Box-constrained minimiser: the project's own (levmar is not installed)")
endif()
