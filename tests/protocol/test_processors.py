"""Every x86-64 processor runs the engine, each greeting as its build does and
searching the same trees; qemu's user-mode emulator plays the processors. The
scan of the disassembly proves that only the BMI2 build needs more than the baseline."""
import os
import platform
import shutil
import subprocess
import sys
import unittest

import isa_scan
from engine import DEV, ENGINE, per_position, run

QEMU = shutil.which("qemu-x86_64")
X86 = platform.machine() in ("x86_64", "AMD64")

# Processor model: what the greeting says after "64 bit ASM".
MODELS = {
    "qemu64": "",  # the x86-64 baseline: no popcnt
    "Nehalem": " HWPopCnt",  # popcnt, no AVX
    "SandyBridge": " HWPopCnt",  # AVX, no AVX2 or BMI2
    "Haswell": " HWPopCnt BMI2",  # x86-64-v3
    "EPYC-Rome": " HWPopCnt",  # x86-64-v3 on AMD family 17h, whose pext is slow
}


def has_bmi2_build(binary):
    return "_ZN7vx_bmi2" in subprocess.run(["nm", binary], capture_output=True, text=True).stdout


@unittest.skipUnless(X86, "x86-64 only")
class BaselineCode(unittest.TestCase):
    def test_no_instruction_beyond_the_baseline_outside_the_bmi2_build(self):
        for binary in (ENGINE, DEV):
            offenders = isa_scan.outside_bmi2_build(binary)
            self.assertFalse(offenders, f"{binary}:\n{isa_scan.report(offenders)}")
            if has_bmi2_build(binary):
                self.assertGreater(isa_scan.bmi2_build_functions(binary), 0, binary)


@unittest.skipUnless(X86 and QEMU, "needs x86-64 and qemu-x86_64 (Debian: qemu-user)")
class ProcessorModels(unittest.TestCase):
    def test_every_model_greets_with_its_build_and_searches_the_native_trees(self):
        status, native = run(ENGINE, "bench", "-6", timeout=300)
        self.assertEqual(status, 0)
        expected = per_position(native)
        self.assertEqual(len(expected), 35)
        prefix = native[0].split(" 64 bit ASM")[0] + " 64 bit ASM"
        for model, suffix in MODELS.items():
            if suffix.endswith("BMI2") and not has_bmi2_build(ENGINE):
                suffix = suffix[:-len(" BMI2")]
            with self.subTest(model=model):
                status, out = run(QEMU, "-cpu", model, ENGINE, "bench", "-6", timeout=300)
                self.assertEqual(status, 0, f"{model}: exit status {status}")
                self.assertEqual(out[0], prefix + suffix)
                self.assertEqual(per_position(out), expected)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
