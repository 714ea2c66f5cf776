# A toolchain file, as a device's vendor has one: arm64 by Debian's cross compiler. Beside native packages it takes
#   dpkg --add-architecture arm64 && apt-get update
#   apt-get install crossbuild-essential-arm64 qtbase5-dev:arm64 liblog4cplus-dev:arm64
# Where the device's headers and libraries lie in a folder of their own, -DCMAKE_FIND_ROOT_PATH=FOLDER names it.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
# Programs, such as Qt's moc, are the building machine's.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
