#!/usr/bin/env python3
"""Runs one libFuzzer program for some seconds, in a directory of its own, from the seeds beside its source."""
import argparse
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent


def main():
    parser = argparse.ArgumentParser(description="a short run of a fuzz target")
    parser.add_argument("--seconds", type=int, default=10)
    parser.add_argument("target")
    args = parser.parse_args()
    name = pathlib.Path(args.target).name.removeprefix("fuzz_")
    with tempfile.TemporaryDirectory() as folder:
        corpus = os.path.join(folder, "corpus")
        seeds = HERE / name
        if seeds.is_dir():
            shutil.copytree(seeds, corpus)
        else:
            os.mkdir(corpus)
        words = [os.path.abspath(args.target), corpus, f"-max_total_time={args.seconds}", "-timeout=20", "-seed=1",
                 "-rss_limit_mb=2048", "-print_final_stats=0", "-verbosity=0", "-artifact_prefix=" + folder + "/"]
        dictionary = HERE / f"{name}.dict"
        if dictionary.exists():
            words.append(f"-dict={dictionary}")
        done = subprocess.run(words, cwd=folder, capture_output=True, text=True, errors="replace")
        if done.returncode == 0:
            print(f"fuzz {name}: {args.seconds} s without a fault")
            return 0
        print(f"fuzz {name}: FAILED\n" + "\n".join(done.stderr.splitlines()[-40:]))
        for found in pathlib.Path(folder).glob("*-*"):
            print(f"{found.name}: {found.read_bytes()[:400]!r}")
        return 1


if __name__ == "__main__":
    sys.exit(main())
