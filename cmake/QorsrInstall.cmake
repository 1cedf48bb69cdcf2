# Install rules: the module at every level, static forms, headers, the CMake package and pkg-config files.
