# SPDX-License-Identifier: MIT
"""runner.py [TEST...]: the tests of those names (as for python3 -m unittest), else all. A test that fails is tried again, up
to three times in all, and that is said: a machine with something else to do loses a key now and then. Says at its end what
was not tested; the exit status is 77 when that is everything."""

import sys
import unittest

TRIES = 3


def names_of(failures):
    """What to run again: the tests that failed, or the whole class where its set-up did."""
    for test, _ in failures:
        test = getattr(test, "test_case", test)  # a part of a test
        yield test.id().partition("(")[2].rstrip(")") if test.id().startswith("setUpClass") else test.id()


def main(names):
    loader = unittest.defaultTestLoader
    suite = loader.loadTestsFromNames(names) if names else loader.discover(".")
    done = 0
    for attempt in range(1, TRIES + 1):
        result = unittest.TextTestRunner(verbosity=2).run(suite)
        done += result.testsRun - len([test for test, _ in result.skipped if not str(test).startswith("setUpClass")])
        for test, reason in result.skipped:
            print(f"{test}: {reason}")
        failed = sorted(set(names_of(result.failures + result.errors)))
        if not failed:
            return 0 if done > 0 else 77
        print(f"Failed, try {attempt} of {TRIES}:", *failed, flush=True)
        suite = loader.loadTestsFromNames(failed)
    return 1


sys.exit(main(sys.argv[1:]))
