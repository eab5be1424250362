"""Finds instructions of newer x86-64 processors outside the BMI2 build.

The BMI2 build (namespace vx_bmi2) is the only code of the program that may
use instructions beyond the x86-64 baseline: it runs only after the choice of
build at start-up. Everything else (the base build, the program entry, the
platform layer, the standard library, static initialisation) runs on every
processor. Usage as a program: isa_scan.py BINARY [OBJDUMP]; exit 1 and the
offending functions when there are any."""
import re
import subprocess
import sys

# AVX and its successors (VEX/EVEX mnemonics start with "v"), BMI1, BMI2,
# LZCNT, MOVBE, and the SSSE3/SSE4 instructions a compiler emits. Two
# instructions of newer processors are allowed: popcnt, which the base build
# runs only where the processor has it (chosen inside that build), and tzcnt,
# which compilers emit for a bit scan of a non-zero word because older
# processors run its encoding as bsf with the same result.
NEWER = re.compile(
    r"^(v[a-z0-9]+|andn|bextr|blsi|blsmsk|blsr|bzhi|mulx|pdep|pext|rorx|sarx|shlx|shrx|lzcnt|movbe|"
    r"pshufb|palignr|phadd[wd]|pabs[bwd]|pmaddubsw|pmulhrsw|psign[bwd]|pblendvb|pblendw|blendv?p[sd]|"
    r"ptest|pmin(sb|uw|ud|sd)|pmax(sb|uw|ud|sd)|pmovzx\w+|pmovsx\w+|pinsr[bdq]|pextr[bdq]|insertps|"
    r"extractps|pmuldq|pmulld|pcmpeqq|pcmpgtq|packusdw|round[ps][sd]|dpp[sd]|crc32)$")
# (pminub, pmaxub, pminsw and pmaxsw are SSE2, part of the baseline.)
NOT_AVX = {"verr", "verw"}  # old protected-mode instructions that start with "v"
# Code of the BMI2 build: the namespace, its const/volatile members, local
# entities and lambdas (_ZZ), and thunks (_ZTh, _ZTv, _ZTc).
BMI2_BUILD = re.compile(r"^_Z(Z|T[hvc][^N]*)?N[KVrRO]*7vx_bmi2")
# The C library of a statically linked program picks its string and maths
# functions by processor at run time (their names end in the instruction set they use).
LIBC_MULTIARCH = re.compile(r"^__?\w+_(avx\w*|evex\w*|sse4\w*|ssse3|fma4?|erms|rtm|unaligned\w*)$")


def functions_with_newer_instructions(binary, objdump="objdump"):
    """{function symbol: set of newer mnemonics} over the whole binary."""
    out = subprocess.run([objdump, "-d", "--no-show-raw-insn", binary], capture_output=True, text=True,
                         check=True).stdout
    found, function = {}, None
    for line in out.splitlines():
        header = re.match(r"^[0-9a-f]+ <(.+)>:$", line)
        if header:
            function = header.group(1)
            continue
        fields = line.split("\t")
        if len(fields) < 2 or function is None:
            continue
        words = fields[1].split()
        mnemonic = words[0] if words else ""
        if (NEWER.match(mnemonic) and mnemonic not in NOT_AVX) or "%ymm" in line or "%zmm" in line:
            found.setdefault(function, set()).add(mnemonic)
    return found


def outside_bmi2_build(binary, objdump="objdump"):
    found = functions_with_newer_instructions(binary, objdump)
    return {f: m for f, m in found.items()
            if not BMI2_BUILD.match(f) and not LIBC_MULTIARCH.match(f.split("@")[0])}


def bmi2_build_functions(binary, objdump="objdump"):
    """How many functions of the BMI2 build use newer instructions (it is really built for them)."""
    return sum(1 for f in functions_with_newer_instructions(binary, objdump) if BMI2_BUILD.match(f))


def report(offenders):
    names = sorted(offenders)
    demangled = subprocess.run(["c++filt"], input="\n".join(names), capture_output=True, text=True).stdout.split("\n")
    return "\n".join(f"{d}: {' '.join(sorted(offenders[n]))}" for n, d in zip(names, demangled))


if __name__ == "__main__":
    bad = outside_bmi2_build(sys.argv[1], sys.argv[2] if len(sys.argv) > 2 else "objdump")
    if bad:
        print(report(bad))
        sys.exit(1)
    print(f"{sys.argv[1]}: no instruction beyond the baseline outside the BMI2 build")
