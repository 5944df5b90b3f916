"""The library for Conan 2: conan create packaging/conan

Not run by this project: Conan is in none of the registries that it builds from.
"""

import re
from pathlib import Path

from conan import ConanFile
from conan.errors import ConanInvalidConfiguration
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeToolchain, cmake_layout
from conan.tools.files import copy

ROOT = Path(__file__).resolve().parents[2]


class KestaDb(ConanFile):
    name = "kesta-db"
    description = "Records of a phone-sync suite in one SQLite file"
    package_type = "shared-library"
    settings = "os", "arch", "compiler", "build_type"

    def set_version(self):
        header = (ROOT / "include/kesta_db/kesta_db.h").read_text(encoding="utf-8")
        self.version = re.search(r'^#define KESTA_DB_VERSION "(.*)"', header, flags=re.M)[1]

    def export_sources(self):
        for pattern in ("CMakeLists.txt", "CHANGELOG.md", "cmake/*", "exports/*", "include/*", "packaging/*.in", "src/*"):
            copy(self, pattern, ROOT, self.export_sources_folder)

    def requirements(self):
        self.requires("sqlite3/[>=3.37 <4]")

    def validate(self):
        check_min_cppstd(self, 20)
        if self.settings.os not in ("Linux", "Windows"):
            raise ConanInvalidConfiguration("the library is made for Linux and Windows")

    def layout(self):
        cmake_layout(self)

    def generate(self):
        toolchain = CMakeToolchain(self)
        # SQLite comes from Conan, so that nothing is fetched by the build itself.
        toolchain.cache_variables.update(KESTA_SYSTEM_SQLITE=True, KESTA_BUILD_TOOLS=False, KESTA_BUILD_TESTS=False)
        toolchain.generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()

    def package_info(self):
        self.cpp_info.libs = ["KESTA_DB"]
        self.cpp_info.set_property("cmake_file_name", "KESTA_DB")
        self.cpp_info.set_property("cmake_target_name", "KESTA_DB::KESTA_DB")
        self.cpp_info.set_property("pkg_config_name", "kesta_db")
