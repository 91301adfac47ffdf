"""The parts of scripts/mutants."""
