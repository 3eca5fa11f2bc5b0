# Entry points for people and CI. Everything runs on a fresh Debian 12 machine:
# missing packages are installed first.
BUILD      ?= build
ASAN_BUILD ?= build-asan
FUZZ_BUILD ?= build-fuzz
JOBS       ?= $(shell nproc)
MYSQL_DIR  ?= /tmp/talp-mariadb
ODBC_DIR   ?= /tmp/talp-odbc

.PHONY: all deps build install package demo test test-asan fuzz bench scale script-scale mysql-scale odbc-scale clean \
        mysql-server mysql-server-stop odbc-dsn odbc-dsn-stop

all: build

deps:
	scripts/install-deps.sh

build: deps
	cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
	cmake --build $(BUILD) -j $(JOBS)

# Installs under PREFIX (default /usr/local): library, headers, plug-in module, talp and its manual.
PREFIX ?= /usr/local
install: build
	cmake --install $(BUILD) --prefix $(PREFIX)

# The Debian package talpremote_VERSION_amd64.deb, in $(BUILD).
package: build
	cmake --build $(BUILD) --target package

# Runs talp on the bundled examples.
demo: build
	scripts/demo.sh $(BUILD)/talp

# Starts what the tests need, runs every test, stops what it started.
test: build
	scripts/run-tests.sh $(BUILD)

# A throw-away MariaDB server with the example catalogue, to try the "mySQL" source;
# prints the TALP_MYSQL_* settings (also in $(MYSQL_DIR)/server.env).
mysql-server: deps
	scripts/mariadb-server.sh start "$(MYSQL_DIR)"

mysql-server-stop:
	scripts/mariadb-server.sh stop "$(MYSQL_DIR)"

# ODBC data sources to try the "ODBC" source: talp_sqlite (the example catalogue
# through the SQLite driver) and talp_mariadb (the MariaDB driver on the server of
# mysql-server). Then: set -a; . $(ODBC_DIR)/odbc.env; set +a
odbc-dsn: mysql-server
	scripts/odbc-dsn.sh start "$(ODBC_DIR)" "$(MYSQL_DIR)/server.env"

odbc-dsn-stop: mysql-server-stop
	scripts/odbc-dsn.sh stop "$(ODBC_DIR)"

# The same tests built with AddressSanitizer and UndefinedBehaviorSanitizer.
test-asan: deps
	cmake -S . -B $(ASAN_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DTALP_SANITIZE=ON
	cmake --build $(ASAN_BUILD) -j $(JOBS)
	scripts/run-tests.sh $(ASAN_BUILD)

# Real libFuzzer binaries (clang); run one with e.g. build-fuzz/fuzz/text_engine_fuzz fuzz/corpus/text_engine
fuzz:
	scripts/install-deps.sh clang libclang-rt-14-dev
	CXX=clang++ cmake -S . -B $(FUZZ_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DTALP_FUZZ=ON -DTALP_SANITIZE=ON
	cmake --build $(FUZZ_BUILD) -j $(JOBS) --target text_engine_fuzz file_data_fuzz record_filter_fuzz xml_table_fuzz if_string_fuzz word_styling_fuzz parse_url_fuzz script_runner_fuzz

bench: deps
	cmake -S . -B build-release -G Ninja -DCMAKE_BUILD_TYPE=Release
	cmake --build build-release -j $(JOBS) --target talp_bench
	build-release/bench/talp_bench

# talp against grep and Python on a generated catalogue of a million records.
scale:
	scripts/install-deps.sh python3 time bc
	cmake -S . -B build-release -G Ninja -DCMAKE_BUILD_TYPE=Release
	cmake --build build-release -j $(JOBS) --target talp
	bench/scale.sh build-release

# Scripts at scale: a data script against the bare duk interpreter, and a "Script" process
# on every record of a File group loop.
script-scale:
	scripts/install-deps.sh python3 bc duktape
	cmake -S . -B build-release -G Ninja -DCMAKE_BUILD_TYPE=Release
	cmake --build build-release -j $(JOBS) --target talp
	bench/script_scale.sh build-release

# talp's "mySQL" source against the mariadb client and the bare client library, on a
# million-row table of a throw-away server.
mysql-scale:
	scripts/install-deps.sh python3 time bc
	cmake -S . -B build-release -G Ninja -DCMAKE_BUILD_TYPE=Release
	cmake --build build-release -j $(JOBS) --target talp mysql_baseline
	bench/mysql_scale.sh build-release

# talp's "ODBC" source through the MariaDB driver against unixODBC's isql, on a
# million-row table of a throw-away server.
odbc-scale:
	scripts/install-deps.sh python3 time bc
	cmake -S . -B build-release -G Ninja -DCMAKE_BUILD_TYPE=Release
	cmake --build build-release -j $(JOBS) --target talp
	bench/odbc_scale.sh build-release

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(FUZZ_BUILD) build-release
