"""A recipe for Conan 2. It builds from the source tree that contains it."""
from os.path import join

from conan import ConanFile
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain, cmake_layout
from conan.tools.files import copy


class QBLCoreRecipe(ConanFile):
    name = "qblcore"
    version = "1.0.0"
    license = "Apache-2.0"
    description = "core class library for servers and tools"
    settings = "os", "arch", "compiler", "build_type"
    options = {"shared": [True, False]}
    default_options = {"shared": True}

    def export_sources(self):
        root = join(self.recipe_folder, "..", "..")
        for pattern in ("CMakeLists.txt", "CHANGELOG.md", "LICENSE", "QBLCore/*", "TavThread/*", "i18n/*",
                        "cmake/*", "examples/*", "gdb/*", "man/*", "msgs/*", "res/*", "scripts/*.cpp", "tools/*"):
            copy(self, pattern, root, self.export_sources_folder)

    def layout(self):
        cmake_layout(self)

    def requirements(self):
        self.requires("icu/72.1", transitive_headers=True)
        self.requires("zlib/[>=1.2.11 <2]")

    def validate(self):
        check_min_cppstd(self, 17)

    def generate(self):
        CMakeDeps(self).generate()
        toolchain = CMakeToolchain(self)
        toolchain.cache_variables["BUILD_TESTING"] = False
        toolchain.cache_variables["QBLCORE_STATIC"] = not self.options.shared
        toolchain.generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build(target="installed")

    def package(self):
        copy(self, "LICENSE", self.source_folder, join(self.package_folder, "licenses"))
        CMake(self).install()

    def package_info(self):
        # The installed CMake files also define qbl_add_catalog and the tools.
        self.cpp_info.set_property("cmake_find_mode", "none")
        self.cpp_info.set_property("pkg_config_name", "qblcore")
        self.cpp_info.builddirs = [join("lib", "cmake", "QBLCore")]
        self.cpp_info.libs = ["QBLCore"]
        self.cpp_info.system_libs = ["pthread", "dl"]
