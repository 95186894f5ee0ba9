# What `cmake --install` puts in place: libraries, headers, the CMake package and the pkg-config file.
