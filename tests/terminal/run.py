#!/usr/bin/env python3
"""Runs the terminal tests: every function test_... of the files *_test.py beside this one."""
import argparse
import importlib
import os
import pathlib
import sys
import traceback

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE))
import session  # noqa: E402


def main():
    parser = argparse.ArgumentParser(description="the program on a pseudo-terminal")
    parser.add_argument("--tarn", default=str(HERE.parent.parent / "build" / "tarn"))
    parser.add_argument("names", nargs="*", help="only tests whose names hold one of these")
    args = parser.parse_args()
    session.TARN = os.path.abspath(args.tarn)
    passed = failed = 0
    for path in sorted(HERE.glob("*_test.py")):
        module = importlib.import_module(path.stem)
        for name, test in vars(module).items():
            full = f"{path.stem}.{name}"
            if not name.startswith("test_") or (args.names and not any(n in full for n in args.names)):
                continue
            try:
                test()
                passed += 1
            except Exception:
                failed += 1
                print(f"{full}\n{traceback.format_exc()}")
    print(f"terminal: {passed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
