# Install rules stand here.
