# A thin face over CMakePresets.json. `make` alone says what there is.
JOBS ?= $(shell n=$$(nproc); [ $$n -gt 3 ] && n=3; echo $$n)
RELEASE := build/release/bin
.DEFAULT_GOAL := help
.PHONY: help build run test test-asan test-tsan soak fuzz bench lint format package screenshots clean

help: ## this list
	@grep -E '^[a-z-]+:.*## ' $(MAKEFILE_LIST) | sed -E 's/:.*## /\t/' | expand -t 16

build: ## the programs: build/release/bin/orvo and build/release/bin/orvoctl
	@scripts/install-deps build
	@scripts/configure release $(if $(BENCH),-DORVO_BENCH=ON)
	@cmake --build --preset release -j $(JOBS)

run: build ## open the window; without a display, a headless demonstration
	@scripts/run

test: ## everything that continuous integration runs
	@scripts/install-deps test
	@scripts/test dev

test-asan: ## the models under the address and undefined-behaviour sanitizers
	@scripts/install-deps test
	@scripts/test asan

test-tsan: ## the Qt-free core under the thread sanitizer
	@scripts/install-deps test
	@scripts/test tsan

soak: ## a long day of work and 200 kills in the middle of it, in the real window; about half an hour
	@scripts/install-deps test
	@scripts/soak

fuzz: ## hostile input for the terminal and the plan reader, FUZZ_SECONDS (120) a target
	@scripts/install-deps lint
	@JOBS=$(JOBS) scripts/fuzz

bench: ## speed beside everyday peers, as tables: interpreter, editor, team runs, start
	@scripts/install-deps bench
	@$(MAKE) --no-print-directory build BENCH=1
	@$(RELEASE)/orvo_bench
	@SCREEN=1920x1200 tests/e2e/with_display $(RELEASE)/orvo_terminal_window_bench
	@$(RELEASE)/orvo_editor_bench
	@$(RELEASE)/orvo_team_runs_bench
	@xvfb-run -a -s '-screen 0 1600x1000x24' dbus-run-session -- $(RELEASE)/orvo_startup_bench

package: ## a Debian package: build/release/package/orvo_*.deb
	@scripts/install-deps build package
	@scripts/package

lint: ## formatting, static analysis, layers, desktop files
	@scripts/install-deps lint test
	@scripts/lint

format: ## apply the formatting
	@scripts/install-deps lint
	@git ls-files '*.cpp' '*.h' | xargs clang-format-19 -i

screenshots: ## every page in every palette as PNG, in build/screenshots
	@scripts/install-deps test
	@scripts/screenshots

clean: ## remove everything built
	@rm -rf build
