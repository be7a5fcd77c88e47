"""Parts of make_models.py: IFC models of our own making, for samples, tests and benchmarks."""
