"""Conan 2 recipe. It builds the checkout that it lies in: conan create packaging/conan -pr:h <a MinGW-w64 profile>."""

import os
import re

from conan import ConanFile
from conan.errors import ConanInvalidConfiguration
from conan.tools.cmake import CMake, CMakeToolchain, cmake_layout
from conan.tools.files import copy, load


class KelInsInfraConan(ConanFile):
    name = "kelinsinfra"
    description = "Infrastructure services for installation programs on 64-bit Windows, for MinGW-w64"
    license = "MIT"
    package_type = "library"
    settings = "os", "arch", "compiler", "build_type"

    def set_version(self):
        text = load(self, os.path.join(self.recipe_folder, "..", "..", "CMakeLists.txt"))
        self.version = re.search(r"VERSION (\d+\.\d+\.\d+)", text).group(1)

    def export_sources(self):
        root = os.path.join(self.recipe_folder, "..", "..")
        for pattern in ("CMakeLists.txt", "LICENSE", "NOTICE", "*.md", "licenses/*", "cmake/*", "KelInsInfra/*"):
            copy(self, pattern, root, self.export_sources_folder)

    def validate(self):
        if self.settings.os != "Windows" or self.settings.arch != "x86_64" or self.settings.compiler != "gcc":
            raise ConanInvalidConfiguration("KelInsInfra is for 64-bit Windows and MinGW-w64 (gcc, posix threads)")

    def build_requirements(self):
        self.tool_requires("flex/2.6.4")  # its FlexLexer.h is all that is used

    def layout(self):
        cmake_layout(self)

    def generate(self):
        toolchain = CMakeToolchain(self)
        toolchain.cache_variables["KELINS_TESTS"] = False
        toolchain.cache_variables["KELINS_EXAMPLES"] = False
        flex = self.dependencies.build["flex"].package_folder
        toolchain.cache_variables["KELINS_FLEX_LEXER_H"] = os.path.join(flex, "include", "FlexLexer.h").replace("\\", "/")
        toolchain.generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()

    def package_info(self):
        # The package brings its own files for CMake, with both libraries and kelins_copy_runtime.
        self.cpp_info.set_property("cmake_find_mode", "none")
        self.cpp_info.builddirs = [os.path.join("lib", "cmake", "KelInsInfra")]
        self.cpp_info.components["shared"].libs = ["KelInsInfra"]
        self.cpp_info.components["static"].libs = ["KelInsInfraStatic"]
        self.cpp_info.components["static"].defines = ["KELINS_STATIC"]
